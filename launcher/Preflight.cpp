#include "launcher/Preflight.h"

#include "launcher/EngineExports.h"
#include "launcher/RecordingNames.h"
#include "launcher/Texts.h"
#include "loader/LibraryLoader.h"
#include "platform/FileIdentity.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <algorithm>

namespace launcher {
namespace {

using tarn::platform::FileKind;

Objection checkSource(const std::string& source, bool isToBeDeleted) {
    const auto identity = tarn::platform::identifyFile(source);
    if (!identity) {
        return "There is no recording " + inQuotes(source) + ": check the path.";
    }
    if (identity->kind == FileKind::Folder) {
        return inQuotes(source) +
               " is a folder: name the recording's file in it, or convert each with --each.";
    }
    // Opening one of those might wait for ever.
    if (identity->kind != FileKind::Ordinary) {
        return inQuotes(source) + " is a pipe or a device: save the recording as a file first.";
    }
    if (!tarn::FileUtils().accessible(source)) {
        return "The recording " + inQuotes(source) + " cannot be read: check its permissions.";
    }
    if (isToBeDeleted && tarn::platform::isLink(source)) {
        return inQuotes(source) +
               " is a link: name the recording itself, or leave out --delete-sources.";
    }
    return std::nullopt;
}

/// What has the destination's name already.
Objection checkPresent(const Job& job) {
    const std::string name = inQuotes(job.destination);
    if (tarn::platform::isLink(job.destination)) {
        return name + " is a link: name the file to write itself.";
    }
    const auto present = tarn::platform::identifyFile(job.destination);
    if (!present) {
        return std::nullopt;
    }
    if (present->kind == FileKind::Folder) {
        return name + " is a folder: name the file to write in it.";
    }
    if (present->kind != FileKind::Ordinary) {
        return name + " is a pipe or a device: choose another name.";
    }
    // A forgotten destination must not cost the last recording.
    if (!job.overwrite) {
        return name + " exists: choose another name, or replace it with --overwrite" +
               (job.sources.size() > 1 ? ", or make a file from each recording with --each." : ".");
    }
    if (tarn::platform::isWriteProtected(job.destination)) {
        return name + " is write-protected: choose another name, or change its permissions.";
    }
    return std::nullopt;
}

Objection checkDestination(const Job& job) {
    const std::string& destination = job.destination;
    if (Objection objection = checkPresent(job)) {
        return objection;
    }
    if (!isMp4(destination)) {
        return "The destination " + inQuotes(destination) +
               " must end in .mp4: give its name last.";
    }
    return checkFolder(tarn::fileNames::parentOf(destination));
}

} // namespace

Objection checkFiles(const Job& job) {
    for (const std::string& source : job.sources) {
        if (Objection objection = checkSource(source, job.deleteSources)) {
            return objection;
        }
    }
    const bool isThere = tarn::FileUtils().exists(job.destination);
    const auto isDestination = [&](const std::string& path) {
        return path == job.destination ||
               (isThere && tarn::FileUtils().isSameFile(path, job.destination));
    };
    if (std::ranges::any_of(job.sources, isDestination) ||
        std::ranges::any_of(job.spared, isDestination)) {
        return "The destination " + inQuotes(job.destination) +
               " is one of the recordings: choose another name.";
    }
    return checkDestination(job);
}

Objection checkFolder(const std::string& folder) {
    if (!tarn::FileUtils().dirExists(folder)) {
        return "There is no folder " + inQuotes(folder) + " for the destination: make it first.";
    }
    if (!tarn::platform::isFolderWritable(folder)) {
        return "The folder " + inQuotes(folder) +
               " cannot be written: choose another destination or change its permissions.";
    }
    return std::nullopt;
}

Objection checkEngine(const std::string& engineFolder) {
    const tarn::FileUtils files;
    const std::string name = tarn::platform::libraryFileName("mediaconverter");
    const std::string remedy = ": name the media engine's folder with --engine-folder.";
    if (engineFolder.empty()) {
        return "Where this program lies cannot be found out" + remedy;
    }
    if (!tarn::platform::isAbsolutePath(engineFolder) || !files.dirExists(engineFolder)) {
        return "There is no folder " + inQuotes(engineFolder) + remedy;
    }
    const std::string path = files.joinPath(engineFolder, name);
    if (!files.exists(path)) {
        return "There is no " + name + " in " + inQuotes(engineFolder) + remedy;
    }
    const auto library = tarn::loader::safeLoadLibrary(tarn::platform::toWide(path));
    if (library == nullptr) {
        return "The media engine " + inQuotes(path) + " cannot be loaded (" +
               tarn::platform::loadFailureText() + ")" + remedy;
    }
    if (tarn::platform::findSymbol(library, "CreateMediaConverter") == nullptr) {
        return inQuotes(path) + " is no media engine (it lacks CreateMediaConverter)" + remedy;
    }
    return std::nullopt;
}

Objection applyChoices(const Job& job) {
    const EngineExports engine(job.engineFolder);
    const auto unknown = [](const std::string& option) {
        return "This media engine knows no " + option + ": leave it out.";
    };
    if (job.fastStart && !engine.choose("fast-start", "on")) {
        return unknown("--fast-start");
    }
    if (!job.quality.empty() && !engine.choose("quality", job.quality.c_str())) {
        return unknown("--quality");
    }
    return std::nullopt;
}

} // namespace launcher

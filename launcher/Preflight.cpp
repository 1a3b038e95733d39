#include "launcher/Preflight.h"

#include "launcher/Texts.h"
#include "loader/LibraryLoader.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <algorithm>

namespace launcher {
namespace {

Objection checkSource(const std::string& source) {
    const tarn::FileUtils files;
    if (!files.exists(source)) {
        return "There is no recording " + inQuotes(source) + ": check the path.";
    }
    if (files.dirExists(source)) {
        return inQuotes(source) + " is a folder: name the recording's file in it.";
    }
    if (!files.accessible(source)) {
        return "The recording " + inQuotes(source) + " can not be read: check its permissions.";
    }
    return std::nullopt;
}

bool endsInMp4(const std::string& path) {
    std::string extension = tarn::FileUtils().extensionOfPath(path);
    std::ranges::transform(extension, extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return extension == ".mp4";
}

Objection checkDestination(const std::string& destination) {
    const tarn::FileUtils files;
    if (files.dirExists(destination)) {
        return inQuotes(destination) + " is a folder: name the file to write in it.";
    }
    // The last argument is replaced, so a forgotten destination must not cost a recording.
    if (!endsInMp4(destination)) {
        return "The destination " + inQuotes(destination) +
               " must end in .mp4: give its name last.";
    }
    const std::string folder = tarn::fileNames::parentOf(destination);
    if (!files.dirExists(folder)) {
        return "There is no folder " + inQuotes(folder) + " for the destination: make it first.";
    }
    if (!tarn::platform::isFolderWritable(folder)) {
        return "The folder " + inQuotes(folder) +
               " can not be written: choose another destination or change its permissions.";
    }
    return std::nullopt;
}

} // namespace

Objection checkFiles(const Job& job) {
    for (const std::string& source : job.sources) {
        if (Objection objection = checkSource(source)) {
            return objection;
        }
    }
    for (const std::string& source : job.sources) {
        if (source == job.destination || tarn::FileUtils().isSameFile(source, job.destination)) {
            return "The destination " + inQuotes(job.destination) +
                   " is one of the recordings: choose another name.";
        }
    }
    return checkDestination(job.destination);
}

Objection checkEngine(const std::string& engineFolder) {
    const tarn::FileUtils files;
    const std::string name = tarn::platform::libraryFileName("mediaconverter");
    const std::string remedy = ": name the media engine's folder with --engine-folder.";
    if (!tarn::platform::isAbsolutePath(engineFolder) || !files.dirExists(engineFolder)) {
        return "There is no folder " + inQuotes(engineFolder) + remedy;
    }
    const std::string path = files.joinPath(engineFolder, name);
    if (!files.exists(path)) {
        return "There is no " + name + " in " + inQuotes(engineFolder) + remedy;
    }
    const auto library = tarn::loader::safeLoadLibrary(tarn::platform::toWide(path));
    if (library == nullptr) {
        return "The media engine " + inQuotes(path) + " can not be loaded (error " +
               std::to_string(tarn::platform::lastError()) + ")" + remedy;
    }
    if (tarn::platform::findSymbol(library, "CreateMediaConverter") == nullptr) {
        return inQuotes(path) + " is no media engine (it lacks CreateMediaConverter)" + remedy;
    }
    return std::nullopt;
}

} // namespace launcher

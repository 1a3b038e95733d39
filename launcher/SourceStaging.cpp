#include "launcher/SourceStaging.h"

#include "platform/Files.h"
#include "platform/Identity.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <charconv>

namespace launcher {
namespace {

/// Names the computer too: in a shared folder another one's process numbers mean nothing here.
std::string folderPrefix() {
    return ".record-converter-sources-" + tarn::platform::computerName().value_or("") + "-";
}

/// The folders of processes that are gone, an earlier one with this process's number among them.
void clearLeftovers(const std::string& parent) {
    const tarn::FileUtils files;
    const std::string prefix = folderPrefix();
    const auto entries = tarn::platform::listFolder(parent, prefix + "*");
    for (const auto& entry : entries.value_or(std::vector<tarn::platform::FolderEntry>())) {
        std::uint32_t process = 0;
        const char* const end = entry.name.data() + entry.name.size();
        const auto number = std::from_chars(entry.name.data() + prefix.size(), end, process);
        if (entry.isFolder && number.ec == std::errc() && number.ptr == end &&
            (process == tarn::platform::processId() ||
             !tarn::platform::isProcessRunning(process))) {
            files.removeNonEmptyDir(files.joinPath(parent, entry.name));
        }
    }
}

} // namespace

SourceStaging::SourceStaging(const std::vector<std::string>& sources,
                             const std::string& destinationFolder) {
    for (const std::string& source : sources) {
        if (!stage(source, destinationFolder)) {
            clear();
            return;
        }
    }
}

void SourceStaging::clear() {
    for (const std::string& folder : mFolders) {
        tarn::FileUtils().removeNonEmptyDir(folder);
    }
    mFolders.clear();
    mPaths.clear();
}

bool SourceStaging::stage(const std::string& source, const std::string& destinationFolder) {
    const tarn::FileUtils files;
    // Numbered, because two sources may have the same name in different folders.
    const std::string name = std::to_string(mPaths.size() + 1) + files.extensionOfPath(source);
    for (const std::string& parent : {files.directoryOfPath(source), destinationFolder}) {
        const std::string folder = makeFolderIn(parent);
        const std::string staged = files.joinPath(folder, name);
        if (!folder.empty() && files.hardLink(source, staged)) {
            mPaths.push_back(staged);
            return true;
        }
    }
    const std::string folder = makeFolderIn(destinationFolder);
    const std::string staged = files.joinPath(folder, name);
    if (folder.empty() || !files.copyFile(source, staged)) {
        return false;
    }
    mPaths.push_back(staged);
    return true;
}

std::string SourceStaging::makeFolderIn(const std::string& parent) {
    const tarn::FileUtils files;
    std::string folder =
        files.joinPath(parent, folderPrefix() + std::to_string(tarn::platform::processId()));
    if (std::ranges::find(mFolders, folder) != mFolders.end()) {
        return folder;
    }
    clearLeftovers(parent);
    if (!files.mkdir(folder)) {
        return {};
    }
    mFolders.push_back(folder);
    return folder;
}

} // namespace launcher

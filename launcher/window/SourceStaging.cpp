#include "launcher/window/SourceStaging.h"

#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "utils/FileUtils.h"

#include <algorithm>

namespace launcher {
namespace {

using tarn::platform::FolderEntry;
using tarn::platform::OpenFolder;

constexpr const char* kPrefix = ".record-converter-";
/// A folder in each such folder. Nobody else has one of that name in a private folder of that name,
/// which is what makes a folder ours.
constexpr const char* kNames = "second-names";

/// What processes that are gone left in a folder. Another user may have renamed a private folder of
/// ours, so the name alone is not enough.
void clearAbandoned(const std::string& parent) {
    const auto found = tarn::platform::listFolder(parent, std::string(kPrefix) + "*");
    for (const FolderEntry& entry : found.value_or(std::vector<FolderEntry>())) {
        if (entry.name.size() != tarn::platform::unforeseeableName(kPrefix).size()) {
            continue;
        }
        const auto leftover =
            OpenFolder::openLeftover(tarn::FileUtils().joinPath(parent, entry.name));
        const auto contents = leftover ? leftover->entries() : std::nullopt;
        if (contents && std::ranges::all_of(*contents, [](const FolderEntry& each) {
                return each.isFolder && each.name == kNames;
            })) {
            leftover->removeAll();
        }
    }
}

/// One argument carries all second names, in which neither '|' nor ':' may stand.
std::string expressible(std::string name) {
    std::ranges::replace(name, '|', '_');
    std::ranges::replace(name, ':', '_');
    return name;
}

std::string withoutSeparatorAtEnd(std::string folder) {
    if (folder.size() > 1 && folder.back() == tarn::platform::pathSeparator()) {
        folder.pop_back();
    }
    return folder;
}

} // namespace

SourceStaging::SourceStaging(const std::vector<std::string>& sources,
                             const std::string& destinationFolder) {
    for (const std::string& parent : {tarn::FileUtils().directoryOfPath(sources.front()),
                                      destinationFolder, tarn::platform::temporaryFolder()}) {
        if (!parent.contains('|') && stageIn(withoutSeparatorAtEnd(parent), sources)) {
            return;
        }
        clear();
    }
}

bool SourceStaging::stageIn(const std::string& parent, const std::vector<std::string>& sources) {
    clearAbandoned(parent);
    if (tarn::platform::canOthersReplaceIn(parent)) {
        return false;
    }
    mFolder = OpenFolder::makePrivate(parent, kPrefix);
    mNames = mFolder && mFolder->makeFolder(kNames) ? mFolder->folder(kNames) : nullptr;
    return mNames &&
           std::ranges::all_of(sources, [this](const auto& source) { return addLink(source); });
}

bool SourceStaging::addLink(const std::string& source) {
    const tarn::FileUtils files;
    // Two sources may have the same name in different folders.
    const std::string number = std::to_string(mPaths.size() + 1);
    const std::string name = expressible(files.fileNameOfPath(source));
    const auto folder = mNames->makeFolder(number) ? mNames->folder(number) : nullptr;
    if (!folder ||
        !(folder->makeHardLink(source, name) || folder->makeSymbolicLink(source, name))) {
        return false;
    }
    mPaths.push_back(files.joinPath(folder->path(), name));
    return files.isSameFile(mPaths.back(), source);
}

bool SourceStaging::areGone() const {
    for (std::size_t number = 1; number <= mPaths.size(); ++number) {
        const auto folder = mNames->folder(std::to_string(number));
        const auto links = folder ? folder->entries() : std::nullopt;
        if (links && !links->empty()) {
            return false;
        }
    }
    return true;
}

void SourceStaging::clear() {
    mPaths.clear();
    mNames.reset();
    if (mFolder) {
        mFolder->removeAll();
        mFolder.reset();
    }
}

} // namespace launcher

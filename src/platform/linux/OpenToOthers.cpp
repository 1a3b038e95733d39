#include "platform/Files.h"
#include "platform/linux/SystemPath.h"

#include <algorithm>
#include <array>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

/// Distributions give each user a group of the same name with nobody else in it.
bool isOwnGroup(gid_t group) {
    std::array<char, 4096> groupText{};
    std::array<char, 4096> userText{};
    struct group groupEntry {};
    struct passwd userEntry {};
    struct group* foundGroup = nullptr;
    struct passwd* foundUser = nullptr;
    return getgrgid_r(group, &groupEntry, groupText.data(), groupText.size(), &foundGroup) == 0 &&
           getpwuid_r(geteuid(), &userEntry, userText.data(), userText.size(), &foundUser) == 0 &&
           foundGroup != nullptr && foundUser != nullptr &&
           std::string_view(foundGroup->gr_name) == foundUser->pw_name;
}

bool canOthersChange(const std::string& path) {
    struct stat status {};
    if (stat(systemPath(path), &status) != 0) {
        return false;
    }
    if (status.st_uid != 0 && status.st_uid != geteuid()) {
        return true;
    }
    // In a sticky folder nobody replaces what is not theirs.
    const bool isSticky = S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
    const bool byGroup =
        (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0 && !isOwnGroup(status.st_gid);
    return !isSticky && ((status.st_mode & S_IWOTH) != 0 || byGroup);
}

} // namespace

std::optional<std::string> placeThatOthersCanChange(const std::string& folder) {
    std::error_code ignored;
    const std::filesystem::path real = std::filesystem::canonical(folder, ignored);
    for (std::filesystem::path place = real; !place.empty(); place = place.parent_path()) {
        if (canOthersChange(place.string())) {
            return place.string();
        }
        if (place == place.root_path()) {
            break;
        }
    }
    for (const FolderEntry& entry :
         listFolder(folder, "*.so*").value_or(std::vector<FolderEntry>())) {
        std::string path = folder + "/" + entry.name;
        if (canOthersChange(path)) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace tarn::platform

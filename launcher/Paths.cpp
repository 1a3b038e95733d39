#include "launcher/Paths.h"

#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace launcher {
namespace {

bool goesUp(const std::filesystem::path& path) {
    return std::ranges::find(path, "..") != path.end();
}

} // namespace

std::filesystem::path fromText(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string toText(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(fromText(path), error);
    if (error) {
        return path;
    }
    // Only the file system knows where ".." leads from behind a link.
    return toText(goesUp(absolute) ? absolute : absolute.lexically_normal());
}

std::string resolvedFolder(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved =
        std::filesystem::weakly_canonical(fromText(absolutePath(path)), error);
    if (error) {
        return path;
    }
    return toText(resolved.has_filename() ? resolved : resolved.parent_path());
}

std::string defaultEngineFolder() {
    const tarn::FileUtils files;
    const std::string programs = files.directoryOfPath(tarn::platform::programFile());
    // Nothing and ".." would lead to what lies beside the working folder.
    if (!tarn::platform::isAbsolutePath(programs)) {
        return {};
    }
    return resolvedFolder(files.joinPath(files.joinPath(programs, ".."), "runtime"));
}

} // namespace launcher

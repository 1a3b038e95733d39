#include "logging/archive/ZipEntryNames.h"

#include "platform/Text.h"
#include "utils/FileNames.h"

#include <algorithm>

namespace tarn {
namespace {

/// Linux allows '\' and ':' in names; elsewhere they lead to other folders and drives. It also
/// allows names that are not UTF-8, which may not be flagged as such.
std::string partName(std::string_view part) {
    std::string name = platform::toUtf8(platform::toWide(part));
    std::ranges::replace_if(
        name, [](char byte) { return byte == '\\' || byte == ':'; }, '_');
    return name == ".." ? "__" : name;
}

void append(std::string& name, std::string_view part) {
    if (!part.empty() && part != ".") {
        name += name.empty() ? "" : "/";
        name += partName(part);
    }
}

} // namespace

std::string ZipEntryNames::next(std::string_view relativePath) {
    std::string name;
    append(name, mRoot);
    while (!relativePath.empty()) {
        const auto* const end =
            std::find_if(relativePath.begin(), relativePath.end(), fileNames::isSeparator);
        const auto length = static_cast<std::size_t>(end - relativePath.begin());
        append(name, relativePath.substr(0, length));
        relativePath.remove_prefix(std::min(length + 1, relativePath.size()));
    }
    const std::string folder = fileNames::directoryOf(name);
    const auto [stem, extension] = fileNames::splitExtension(fileNames::nameOf(name));
    for (int number = 1; !mGiven.insert(name).second; ++number) {
        name = folder + stem + "(" + std::to_string(number) + ")" + extension;
    }
    return name;
}

} // namespace tarn

#include "launcher/window/SourceListEncoder.h"

#include <algorithm>

namespace launcher {
namespace {

bool isInsideCharacter(const std::string& text, std::size_t position) {
    return position < text.size() && (static_cast<unsigned char>(text[position]) & 0xC0U) == 0x80U;
}

/// How many bytes all paths begin with, between whole characters and leaving each a name.
std::size_t commonLength(const std::vector<std::string>& paths) {
    const std::string& first = paths.front();
    std::size_t length = first.size();
    for (const std::string& path : paths) {
        const auto end = std::ranges::mismatch(first, path).in1;
        length = std::min(length, static_cast<std::size_t>(end - first.begin()));
        length = std::min(length, path.empty() ? 0 : path.size() - 1);
    }
    while (isInsideCharacter(first, length)) {
        --length;
    }
    return length;
}

} // namespace

std::string encodeSourceList(const std::vector<std::string>& paths) {
    if (paths.size() == 1) {
        return paths.front();
    }
    const std::size_t common = commonLength(paths);
    // The stem ends at the last '.', and an extension of '.' alone is none.
    std::string argument = paths.front().substr(0, common) + ".";
    char separator = '|';
    for (const std::string& path : paths) {
        argument += separator + path.substr(common);
        separator = ':';
    }
    return argument;
}

} // namespace launcher

#pragma once

#include "platform/Utf8.h"

#include <string_view>

namespace tarn::platform {

/// Whether a name matches a pattern in which `*` stands for any text and `?` for one character;
/// fnmatch() would read brackets and backslashes too. Time is linear but for repeated `*`.
constexpr bool matchesWildcard(std::string_view name, std::string_view pattern) {
    std::size_t inName = 0;
    std::size_t inPattern = 0;
    std::size_t afterStar = std::string_view::npos;
    std::size_t starName = 0;
    while (inName < name.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == '*') {
            afterStar = ++inPattern;
            starName = inName;
        } else if (inPattern < pattern.size() && pattern[inPattern] == '?') {
            ++inPattern;
            inName += decodeUtf8(name, inName).length;
        } else if (inPattern < pattern.size() && pattern[inPattern] == name[inName]) {
            ++inPattern;
            ++inName;
        } else if (afterStar != std::string_view::npos) {
            inPattern = afterStar;
            inName = ++starName;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

} // namespace tarn::platform

#include "recordconverter/SourceList.h"

#include <algorithm>

namespace recordconverter {
namespace {

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = text.find(separator, begin)) != std::string_view::npos;
         begin = end + 1) {
        parts.push_back(text.substr(begin, end - begin));
    }
    parts.push_back(text.substr(begin));
    return parts;
}

} // namespace

std::vector<std::string> expandSourceList(std::string_view argument) {
    const std::vector<std::string_view> parts = split(argument, '|');
    if (parts.size() == 1) {
        return {std::string(argument)};
    }
    if (parts.size() != 2) {
        return {};
    }
    const std::string_view pattern = parts[0];
    const std::size_t dot = std::min(pattern.rfind('.'), pattern.size());
    const std::string_view stem = pattern.substr(0, dot);
    const std::string_view extension =
        dot + 1 < pattern.size() ? pattern.substr(dot) : std::string_view();

    std::vector<std::string> paths;
    for (const std::string_view name : split(parts[1], ':')) {
        paths.push_back(std::string(stem).append(name).append(extension));
    }
    return paths;
}

} // namespace recordconverter

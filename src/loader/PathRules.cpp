#include "loader/PathRules.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tarn::loader {
namespace {

constexpr std::array<std::wstring_view, 8> kForbiddenParts{L"..", L"<", L">", L"\"",
                                                           L"/",  L"|", L"?", L"*"};

bool isLetter(wchar_t character) {
    return (character >= L'A' && character <= L'Z') || (character >= L'a' && character <= L'z');
}

} // namespace

bool isValidPath(const std::wstring& path) {
    return !path.empty() && std::ranges::none_of(kForbiddenParts, [&](std::wstring_view part) {
        return path.find(part) != std::wstring::npos;
    });
}

bool isAbsoluteDrivePath(const std::wstring& path) {
    return path.size() >= 3 && isLetter(path[0]) && path[1] == L':' && path[2] == L'\\' &&
           isValidPath(path);
}

std::wstring parentFolder(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    return path.substr(0, separator == std::wstring::npos ? 0 : separator + 1);
}

bool isBareName(const std::wstring& name) {
    return !name.empty() && name.find_first_of(L"\\/") == std::wstring::npos;
}

} // namespace tarn::loader

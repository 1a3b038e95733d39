#include "platform/Text.h"

#include "platform/Utf8.h"

#include <algorithm>
#include <cwctype>

namespace tarn::platform {

std::wstring toWide(std::string_view utf8) {
    static_assert(sizeof(wchar_t) == sizeof(char32_t));
    std::wstring wide;
    wide.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();) {
        const DecodedCharacter character = decodeUtf8(utf8, position);
        wide.push_back(static_cast<wchar_t>(character.value));
        position += character.length;
    }
    return wide;
}

std::string toUtf8(std::wstring_view wide) {
    std::string text;
    text.reserve(wide.size());
    for (const wchar_t character : wide) {
        appendUtf8(text, static_cast<char32_t>(character));
    }
    return text;
}

bool startsWithIgnoringCase(std::wstring_view text, std::wstring_view prefix) {
    const auto folded = [](wchar_t character) {
        return std::towlower(static_cast<std::wint_t>(character));
    };
    return text.size() >= prefix.size() &&
           std::ranges::equal(text.substr(0, prefix.size()), prefix, {}, folded, folded);
}

} // namespace tarn::platform

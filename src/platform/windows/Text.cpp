#include "platform/Text.h"

#include "platform/Utf8.h"

// windows.h first: shlwapi.h does not stand alone.
#include <windows.h>

#include <shlwapi.h>

namespace tarn::platform {
namespace {

constexpr char32_t kFirstSupplementary = 0x10000;

constexpr bool isHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool isLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

// The same decoder as on Linux: MultiByteToWideChar takes 2 GB at most, and systems differ in how
// many U+FFFD they make of an invalid sequence.
std::wstring toWide(std::string_view utf8) {
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    std::wstring wide;
    wide.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();) {
        const DecodedCharacter character = decodeUtf8(utf8, position);
        if (character.value < kFirstSupplementary) {
            wide.push_back(static_cast<wchar_t>(character.value));
        } else {
            const char32_t offset = character.value - kFirstSupplementary;
            wide.push_back(static_cast<wchar_t>(0xD800U + (offset >> 10U)));
            wide.push_back(static_cast<wchar_t>(0xDC00U + (offset & 0x3FFU)));
        }
        position += character.length;
    }
    return wide;
}

std::string toUtf8(std::wstring_view wide) {
    std::string text;
    text.reserve(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        char32_t value = wide[i];
        if (isHighSurrogate(wide[i]) && i + 1 < wide.size() && isLowSurrogate(wide[i + 1])) {
            value = kFirstSupplementary + ((value - 0xD800U) << 10U) + (wide[i + 1] - 0xDC00U);
            ++i;
        }
        appendUtf8(text, value); // a lone surrogate becomes U+FFFD there
    }
    return text;
}

bool startsWithIgnoringCase(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() &&
           StrCmpNIW(text.data(), prefix.data(), static_cast<int>(prefix.size())) == 0;
}

} // namespace tarn::platform

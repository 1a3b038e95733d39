#include "logging/ControlCharacters.h"

#include "platform/Utf8.h"

#include <cstddef>
#include <string_view>

namespace tarn {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

/// Without an early end and without the tab, which is plain but rare: compiled to whole vectors.
bool isPlainAscii(std::string_view text) {
    unsigned char others = 0;
    for (const char character : text) {
        const auto fromSpace = static_cast<unsigned char>(character - ' ');
        others = static_cast<unsigned char>(others | (fromSpace > '~' - ' ' ? 1 : 0));
    }
    return others == 0;
}

void appendHex(std::string& text, char32_t value, int digits) {
    for (int digit = digits - 1; digit >= 0; --digit) {
        text += kHexDigits[(value >> (4 * digit)) & 0xFU];
    }
}

void appendEscaped(std::string& text, char32_t value) {
    if (value == U'\n') {
        text += "\\n";
    } else if (value == U'\r') {
        text += "\\r";
    } else if (value < 0x80) {
        text += "\\x";
        appendHex(text, value, 2);
    } else {
        text += "\\u";
        appendHex(text, value, 4);
    }
}

bool isRefused(char32_t value) {
    return (value < 0x20 && value != U'\t') || (value >= 0x7F && value < 0xA0) || value == 0x2028 ||
           value == 0x2029;
}

} // namespace

void escapeControlCharacters(std::string& text) {
    if (isPlainAscii(text)) {
        return;
    }
    std::string escaped;
    escaped.reserve(text.size() + 16);
    for (std::size_t at = 0; at < text.size();) {
        const auto character = platform::decodeUtf8(text, at);
        if (!character.valid) {
            for (std::size_t byte = 0; byte < character.length; ++byte) {
                escaped += "\\x";
                appendHex(escaped, static_cast<unsigned char>(text[at + byte]), 2);
            }
        } else if (isRefused(character.value)) {
            appendEscaped(escaped, character.value);
        } else {
            escaped.append(text, at, character.length);
        }
        at += character.length;
    }
    text.swap(escaped);
}

} // namespace tarn

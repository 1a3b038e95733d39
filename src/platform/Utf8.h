#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::platform {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

struct DecodedCharacter {
    char32_t value = kReplacementCharacter;
    std::size_t length = 1; ///< bytes taken, at least 1
    bool valid = false;
};

/// Decodes the character that begins at `position`, which lies inside the text. An ill-formed
/// sequence takes its longest well-formed beginning (Unicode 15, table 3-7 and "best practice").
constexpr DecodedCharacter decodeUtf8(std::string_view text, std::size_t position) {
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byteAt(position);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0) {
        return {};
    }
    // Only the second byte's range depends on the lead: no overlong forms, no surrogates, no value
    // beyond U+10FFFF.
    unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t value = lead & (0x7FU >> length);
    for (std::size_t taken = 1; taken < length; ++taken) {
        if (position + taken >= text.size() || byteAt(position + taken) < low ||
            byteAt(position + taken) > high) {
            return {kReplacementCharacter, taken, false};
        }
        value = (value << 6U) | (byteAt(position + taken) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {value, length, true};
}

/// Appends a character; one that UTF-8 cannot carry becomes U+FFFD.
inline void appendUtf8(std::string& text, char32_t value) {
    if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        value = kReplacementCharacter;
    }
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (value < 0x80) {
        put(value);
        return;
    }
    if (value < 0x800) {
        put(0xC0U | (value >> 6U));
    } else {
        if (value < 0x10000) {
            put(0xE0U | (value >> 12U));
        } else {
            put(0xF0U | (value >> 18U));
            put(0x80U | ((value >> 12U) & 0x3FU));
        }
        put(0x80U | ((value >> 6U) & 0x3FU));
    }
    put(0x80U | (value & 0x3FU));
}

} // namespace tarn::platform

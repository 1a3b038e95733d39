#include "launcher/Texts.h"

#include "logging/ControlCharacters.h"
#include "platform/Utf8.h"

#include <array>
#include <cstdio>

namespace launcher {
namespace {

bool turnsReadingRound(char32_t value) {
    return value == 0x061C || value == 0x200E || value == 0x200F ||
           (value >= 0x202A && value <= 0x202E) || (value >= 0x2066 && value <= 0x2069);
}

} // namespace

std::string visible(std::string_view text) {
    std::string plain(text);
    tarn::escapeControlCharacters(plain);
    std::string shown;
    for (std::size_t at = 0; at < plain.size();) {
        const auto character = tarn::platform::decodeUtf8(plain, at);
        if (character.value == U'\t') {
            shown += "\\t";
        } else if (turnsReadingRound(character.value)) {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\u%04x",
                          static_cast<unsigned>(character.value));
            shown += code.data();
        } else {
            shown.append(plain, at, character.length);
        }
        at += character.length;
    }
    return shown;
}

std::string inQuotes(std::string_view text) {
    return '"' + visible(text) + '"';
}

} // namespace launcher

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

std::string helpText(std::string_view logFolder) {
    std::string text =
        R"(usage: record-converter [options] SOURCE... DESTINATION
       record-converter --archive-logs DIR

Turns a recording into an ordinary .mp4 file. Several sources are parts of one
recording, in the given order.

  --no-window            convert in the terminal, without a window
  --theme light|dark     for the window
  --engine-folder DIR    the runtime folder, which holds the media engine and the
                         window's library; default: "runtime" beside the
                         program's own folder
  --overwrite            replace a destination that exists; default: refuse it
  --delete-sources       delete the sources when all that they hold is in the
                         destination; default: keep them
  --archive-logs DIR     pack the logs of this and the previous run into a zip file
                         in that folder, where the newest five are kept
  --help, --version      say this, or the version
  --                     end of the options

Ctrl-C stops a conversion, removes what was written so far and keeps the sources.

exit status: 0 converted completely, or archived; 1 that failed; 2 nothing was
started; 3 converted, but something that the recording holds is missing in the
destination: the sources are kept; 130 stopped. Standard error says why.

log: )";
    return text.append(visible(logFolder)).append("\n");
}

std::string versionText() {
    return "record-converter " RECORD_CONVERTER_VERSION "\n";
}

} // namespace launcher

#include "launcher/Texts.h"

#include "platform/Text.h"

namespace launcher {

std::string inQuotes(std::string_view text) {
    // Through wide text and back: what is not UTF-8 comes out as the replacement character.
    std::string safe = tarn::platform::toUtf8(tarn::platform::toWide(text));
    for (char& character : safe) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x20 || code == 0x7F) {
            character = '?';
        }
    }
    return '"' + safe + '"';
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
  --delete-sources       delete the sources when the destination is complete;
                         default: keep them
  --archive-logs DIR     pack the logs of this and the previous run into a zip file
                         in that folder, where the newest five are kept
  --help, --version      say this, or the version
  --                     end of the options

Ctrl-C stops a conversion, removes what was written so far and keeps the sources.

exit status: 0 converted or archived; 1 that failed; 2 nothing was started, because
of what is said on standard error; 130 stopped

log: )";
    return text.append(logFolder).append("\n");
}

std::string versionText() {
    return "record-converter " RECORD_CONVERTER_VERSION "\n";
}

} // namespace launcher

#include "platform/Terminal.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

int descriptor(TerminalStream stream) {
    return stream == TerminalStream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

} // namespace

bool isTerminal(TerminalStream stream) {
    return isatty(descriptor(stream)) == 1;
}

int terminalWidth(TerminalStream stream) {
    winsize size = {};
    return ioctl(descriptor(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void writeTerminal(TerminalStream stream, std::string_view utf8) {
    while (!utf8.empty()) {
        const ssize_t written = write(descriptor(stream), utf8.data(), utf8.size());
        if (written > 0) {
            utf8.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

} // namespace tarn::platform

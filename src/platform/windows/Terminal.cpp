#include "platform/Terminal.h"

#include "platform/Text.h"

#include <windows.h>

#include <algorithm>
#include <string>

namespace tarn::platform {
namespace {

HANDLE handleOf(TerminalStream stream) {
    return GetStdHandle(stream == TerminalStream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

} // namespace

bool isTerminal(TerminalStream stream) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != FALSE;
}

int terminalWidth(TerminalStream stream) {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (GetConsoleScreenBufferInfo(handleOf(stream), &info) == FALSE) {
        return 80;
    }
    return info.srWindow.Right - info.srWindow.Left + 1;
}

void writeTerminal(TerminalStream stream, std::string_view utf8) {
    const HANDLE handle = handleOf(stream);
    DWORD written = 0;
    if (isTerminal(stream)) {
        const std::wstring wide = toWide(utf8);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    while (!utf8.empty()) {
        const auto size = static_cast<DWORD>(std::min<std::size_t>(utf8.size(), 1U << 20U));
        if (WriteFile(handle, utf8.data(), size, &written, nullptr) == FALSE || written == 0) {
            return;
        }
        utf8.remove_prefix(written);
    }
}

} // namespace tarn::platform

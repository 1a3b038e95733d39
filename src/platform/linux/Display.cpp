#include "platform/Display.h"

#include "platform/KnownFolders.h"

#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tarn::platform {
namespace {

/// `name` beginning with a NUL is a name outside the file system.
bool somebodyListens(const std::string& name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.size() >= sizeof(address.sun_path)) {
        return false;
    }
    std::memcpy(address.sun_path, name.data(), name.size());
    const int socketHandle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socketHandle < 0) {
        return false;
    }
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    const bool connected =
        connect(socketHandle, reinterpret_cast<const sockaddr*>(&address), size) == 0;
    close(socketHandle);
    return connected;
}

std::string valueOf(const char* name) {
    return environmentVariable(name).value_or("");
}

/// DISPLAY is [host]:number[.screen]; only a local one can be tried without waiting.
bool hasX11() {
    const std::string display = valueOf("DISPLAY");
    const std::size_t colon = display.rfind(':');
    if (colon == std::string::npos) {
        return false;
    }
    if (colon != 0 && display.substr(0, colon) != "unix") {
        return true;
    }
    const std::string number = display.substr(colon + 1, display.find('.', colon) - colon - 1);
    const std::string path = "/tmp/.X11-unix/X" + number;
    return somebodyListens(std::string(1, '\0') + path) || somebodyListens(path);
}

bool hasWayland() {
    const std::string display = valueOf("WAYLAND_DISPLAY");
    if (display.empty()) {
        return false;
    }
    return somebodyListens(display.front() == '/' ? display
                                                  : valueOf("XDG_RUNTIME_DIR") + "/" + display);
}

} // namespace

bool hasDisplay() {
    return !valueOf("QT_QPA_PLATFORM").empty() || hasX11() || hasWayland();
}

} // namespace tarn::platform

#include "platform/Display.h"

#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace tarn::platform {
namespace {

constexpr std::chrono::seconds kDisplayPatience{10};

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

/// The functions of the library by which Qt talks to X11.
struct Xcb {
    void* (*connect)(const char* display, int* screen) = nullptr;
    int (*hasError)(void* connection) = nullptr;
    void (*disconnect)(void* connection) = nullptr;

    Xcb() {
        LibraryHandle library = nullptr;
        for (const std::string& folder : systemLibraryFolders()) {
            if (library == nullptr) {
                library = loadWithSystemSearchPath(toWide(folder + "/libxcb.so.1"));
            }
        }
        connect = reinterpret_cast<decltype(connect)>(findSymbol(library, "xcb_connect"));
        hasError =
            reinterpret_cast<decltype(hasError)>(findSymbol(library, "xcb_connection_has_error"));
        disconnect = reinterpret_cast<decltype(disconnect)>(findSymbol(library, "xcb_disconnect"));
    }
};

bool canConnectToX11() {
    const Xcb xcb;
    if (xcb.connect == nullptr || xcb.hasError == nullptr || xcb.disconnect == nullptr) {
        return false;
    }
    void* const connection = xcb.connect(nullptr, nullptr); // to what DISPLAY names
    const bool isConnected = xcb.hasError(connection) == 0;
    xcb.disconnect(connection);
    return isConnected;
}

/// A server that does not answer would be waited for without an end.
bool hasX11() {
    struct Attempt {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<bool> isConnected;
    };
    const auto attempt = std::make_shared<Attempt>();
    std::thread([attempt] {
        const bool isConnected = canConnectToX11();
        const std::lock_guard lock(attempt->mutex);
        attempt->isConnected = isConnected;
        attempt->changed.notify_all();
    }).detach();
    std::unique_lock lock(attempt->mutex);
    attempt->changed.wait_for(lock, kDisplayPatience,
                              [&] { return attempt->isConnected.has_value(); });
    return attempt->isConnected.value_or(false);
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

std::vector<std::string> windowSystems() {
    return {"xcb", "wayland"};
}

bool isWindowSystemThere(const std::string& name) {
    if (name == "xcb") {
        return hasX11();
    }
    return !name.starts_with("wayland") || hasWayland();
}

} // namespace tarn::platform

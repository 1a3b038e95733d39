#include "platform/DesktopTheme.h"

#include <cstdint>
#include <memory>
#include <systemd/sd-bus.h>

namespace tarn::platform {
namespace {

constexpr std::uint64_t kPatience = 500'000; // microseconds
constexpr std::uint32_t kPrefersDark = 1;

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;
using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

} // namespace

bool isDesktopDark() {
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0) {
        return false;
    }
    const Bus bus(opened, &sd_bus_flush_close_unref);
    sd_bus_set_method_call_timeout(bus.get(), kPatience);
    sd_bus_message* answered = nullptr;
    const int result = sd_bus_call_method(
        bus.get(), "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
        "org.freedesktop.portal.Settings", "Read", nullptr, &answered, "ss",
        "org.freedesktop.appearance", "color-scheme");
    const Message answer(answered, &sd_bus_message_unref);
    std::uint32_t scheme = 0;
    // This call wraps the value twice.
    return result >= 0 && sd_bus_message_read(answer.get(), "v", "v", "u", &scheme) > 0 &&
           scheme == kPrefersDark;
}

} // namespace tarn::platform

#pragma once

#include <string>
#include <vector>

namespace tarn::platform {

/// The window systems of this platform by Qt's names, the best first.
std::vector<std::string> windowSystems();

/// False when nobody answers to show a window on that system: the display that DISPLAY names for
/// "xcb", the compositor that WAYLAND_DISPLAY names for "wayland". One that needs nobody is there.
bool isWindowSystemThere(const std::string& name);

} // namespace tarn::platform

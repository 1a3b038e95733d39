#pragma once

namespace tarn::platform {

/// False when there is certainly no screen to show a window on. Windows always has one; on Linux it
/// is what DISPLAY or WAYLAND_DISPLAY name, if somebody answers there, or what QT_QPA_PLATFORM
/// puts in its place.
bool hasDisplay();

} // namespace tarn::platform

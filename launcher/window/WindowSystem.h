#pragma once

#include "launcher/Preflight.h"

#include <string>

namespace launcher {

/// Somebody answers on a window system for which the runtime folder has Qt's plugin: else Qt ends
/// the process. QT_QPA_PLATFORM decides when it is set, as it does in Qt.
Objection checkWindowSystem(const std::string& runtimeFolder);

} // namespace launcher

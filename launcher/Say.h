#pragma once

#include "launcher/ExitStatus.h"

#include <string>

namespace launcher {

/// A sentence on standard error, on a line of its own.
void say(const std::string& sentence);

/// Says why nothing is started.
ExitStatus refuse(const std::string& sentence);

} // namespace launcher

#pragma once

#include "launcher/ExitStatus.h"
#include "launcher/Preflight.h"
#include "launcher/usage/Options.h"

#include <string>

namespace launcher {

/// From now on the process ends with the status of the conversion in the window, which itself
/// leaves by exit(0). First of all: what is called at exit runs in reverse order, and this ends the
/// process.
void takeOverExitStatus();

/// The runtime folder holds the product library with its entry point, which stays loaded for the
/// life of the process, and there is a screen to show it on.
Objection checkWindow(const std::string& runtimeFolder);

/// Converts in the window, for which checkWindow found nothing in the way. Mostly it does not come
/// back: the window ends the process. What the window deletes are second names of the sources.
/// `program` is the program's own path.
ExitStatus convertInWindow(const Job& job, Theme theme, const std::string& program);

} // namespace launcher

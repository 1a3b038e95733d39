#pragma once

#include "launcher/ExitStatus.h"
#include "launcher/Options.h"
#include "launcher/Preflight.h"

#include <string>

namespace launcher {

/// There is a screen, and the runtime folder holds the product library with its entry point, which
/// stays loaded for the life of the process.
Objection checkWindow(const std::string& runtimeFolder);

/// Converts in the window, for which checkWindow found nothing in the way. Mostly it does not come
/// back: the window ends the process. What it gets to delete are second names of the sources unless
/// the job says to delete them. `program` is the program's own path.
ExitStatus convertInWindow(const Job& job, Theme theme, const std::string& program);

} // namespace launcher

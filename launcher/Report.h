#pragma once

#include "launcher/EngineExports.h"
#include "launcher/ExitStatus.h"
#include "launcher/JobFiles.h"
#include "launcher/Preflight.h"

#include <string>

namespace launcher {

/// What the user is told when a conversion has ended, and the status that goes with it.

/// For a conversion that its engine calls complete: looks at the destination, and removes the
/// sources when that was asked for and nothing is lost.
ExitStatus reportComplete(const Job& job, const JobFiles& files, const EngineExports& engine);

/// `reason` is the engine's own, or empty.
ExitStatus reportFailure(const std::string& what, const std::string& reason);

ExitStatus reportStopped();

} // namespace launcher

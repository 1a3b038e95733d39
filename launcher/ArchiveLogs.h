#pragma once

#include "launcher/ExitStatus.h"

#include <string>

namespace launcher {

/// Packs the tool's log files of the last run and the one before into a zip file in an absolute
/// folder and prints its path. The lines that this writes follow in the last run's log.
ExitStatus archiveLogs(const std::string& destination);

} // namespace launcher

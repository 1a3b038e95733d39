#pragma once

#include "logging/file/FileLogger.h"

namespace tarn {

/// An executor with a queue and a worker of its own, so that archiving delays nothing else. The
/// worker ends with the last copy of the executor, after the jobs handed in before.
FileLogger::ArchiveExecutor makeArchiveQueue();

} // namespace tarn

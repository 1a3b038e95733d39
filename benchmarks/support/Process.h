#pragma once

#include "support/Comparison.h"

#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

struct Usage {
    double wallSeconds = 0.0;
    double cpuSeconds = 0.0;
    double peakMegabytes = 0.0; ///< largest resident set, in 10^6 bytes
};

/// Runs a command to its end, its output in the file `log`. Throws std::runtime_error, with the
/// end of the log, when it cannot be started or does not end with status 0.
Usage runCommand(const std::vector<std::string>& command, const std::string& log);

/// Runs the body in a forked process of its own and returns what it returned: loggers and pools of
/// the two sides never live in one process, and each run starts from the same heap. The caller
/// must not have threads. Throws std::runtime_error when the body failed.
Figures inChildProcess(const std::function<Figures()>& body);

} // namespace benchmarks

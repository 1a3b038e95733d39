#pragma once

#include "launcher/ExitStatus.h"
#include "launcher/Preflight.h"
#include "recordconverter/ConverterLog.h"

#include <memory>

namespace launcher {

/// Converts on the terminal: progress on standard error, Ctrl-C stops. Returns when the engine has
/// ended and is unloaded. An engine that cannot be stopped keeps its threads: the process then
/// ends here and now.
ExitStatus convertInTerminal(const Job& job,
                             const std::shared_ptr<recordconverter::ConverterLog>& converterLog);

} // namespace launcher

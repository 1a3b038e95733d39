#pragma once

#include "launcher/EngineExports.h"
#include "launcher/JobFiles.h"
#include "launcher/Outcome.h"
#include "launcher/Preflight.h"

#include <string>

namespace launcher {

/// Of a conversion that its engine calls complete: looks at the destination, and removes the
/// sources when that was asked for and nothing is lost.
Outcome completed(const Job& job, const JobFiles& files, const EngineExports& engine);

/// `reason` is the engine's own, or empty.
Outcome failed(const std::string& what, const std::string& reason = {}, std::int32_t error = 0);
Outcome engineFailed(std::int32_t error, const std::string& reason);

/// Tells the user of the only conversion there is.
void report(const Job& job, const Outcome& outcome);
void sayWhereTheLogIs();

/// The status as a program reads it: "complete", "failed", "refused", "incomplete", "stopped".
const char* resultName(ExitStatus status);

/// The same as report() in a line about one of many.
std::string resultText(const Job& job, const Outcome& outcome);

} // namespace launcher

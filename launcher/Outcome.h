#pragma once

#include "launcher/ExitStatus.h"

#include <cstdint>
#include <string>
#include <vector>

namespace launcher {

/// How a conversion ended, with all that is told about it.
struct Outcome {
    ExitStatus status = ExitStatus::Complete;
    std::string what{};                    ///< refused or failed: why; a refusal is a sentence
    std::string reason{};                  ///< failed: the engine's own words, no full stop
    std::int32_t error = 0;                ///< failed: the engine's own number
    std::string losses{};                  ///< incomplete: what is missing, no full stop
    std::vector<std::string> notDeleted{}; ///< each in quotes with the reason
    bool mayBeUnfinished = false;          ///< stopped, and something has the destination's name
};

} // namespace launcher

#pragma once

#include "zel/EngineContract.h"

#include <cstdint>
#include <string>

namespace zelcore {

/// How the conversion that was started last ended; what ZelConversionEnding hands over.
struct Ending {
    std::int32_t code = zel::kZelNotEnded;
    std::string reason;
};

/// Any thread.
void keepEnding(const Ending& ending);
Ending lastEnding();

} // namespace zelcore

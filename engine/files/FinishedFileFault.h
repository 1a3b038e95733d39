#pragma once

#include "engine/support/Failure.h"

#include <string>

namespace zelcore {

/// A finished file is not what was written. `why` follows its name in a sentence.
[[noreturn]] inline void throwFinishedFileFault(const std::string& why) {
    throw Failure(ErrorCode::VerificationFailed, "The finished file " + why);
}

} // namespace zelcore

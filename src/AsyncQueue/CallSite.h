#pragma once

#include "threading/ExternalInput.h"

#include <cstdint>
#include <memory>

namespace tarn {

/// Where a task is called from, and on whose behalf. The texts are constants.
struct CallSite {
    const char* file = "";
    const char* function = "";
    std::shared_ptr<const hint_external_input> context;
    std::shared_ptr<const hint_external_input> contextOwner; ///< keeps `context` for a hand-over
    std::uint32_t line = 0;

    /// The place, with the calling thread's context.
    static CallSite capture(const char* file, std::uint32_t line, const char* function);
};

} // namespace tarn

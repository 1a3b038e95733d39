#include "AsyncQueue/CallSite.h"

namespace tarn {

CallSite CallSite::capture(const char* file, std::uint32_t line, const char* function) {
    const auto context = hint_external_input::share();
    return {file, function, context, context, line};
}

} // namespace tarn

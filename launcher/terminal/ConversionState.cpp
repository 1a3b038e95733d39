#include "launcher/terminal/ConversionState.h"

#include <algorithm>

namespace launcher {

void ConversionState::onConvertStarted(const std::string& /*destination*/) {
    mStarted = true;
}

void ConversionState::onConvertProgress(float percent, const std::string& /*destination*/) {
    // Written by one thread at a time; a comparison with NaN is false and changes nothing.
    if (percent > mPercent) {
        mPercent = std::min(percent, 100.0F);
    }
}

void ConversionState::onConvertError(std::int32_t /*code*/, const std::string& /*destination*/) {
    // The session settles with the code once every observer has heard of it.
}

void ConversionState::settle(Ending ending) {
    const std::lock_guard lock(mMutex);
    mEnding = ending;
    mChanged.notify_all();
}

std::optional<ConversionState::Ending> ConversionState::waitUntilSettled(
    std::chrono::milliseconds patience) {
    std::unique_lock lock(mMutex);
    mChanged.wait_for(lock, patience, [this] { return mEnding.has_value(); });
    return mEnding;
}

} // namespace launcher

#pragma once

#include "recordconverter/IMediaConverterCallback.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

namespace launcher {

/// How far a conversion is: written by the engine's thread, read by the one that waits.
class ConversionState : public recordconverter::IMediaConverterCallback {
public:
    enum class Result { Complete, Error };
    struct Ending {
        Result result = Result::Complete;
        std::int32_t errorCode = 0; ///< the engine's own
    };

    void onConvertStarted(const std::string& destination) override;
    void onConvertProgress(float percent, const std::string& destination) override;
    void onConvertError(std::int32_t code, const std::string& destination) override;

    bool started() const { return mStarted; }
    /// 0 to 100, never falling.
    float percent() const { return mPercent; }

    /// Decides between the engine's endings and the caller's giving up: true for the first alone.
    bool claimEnding() { return !mClaimed.exchange(true); }

    /// The ending is dealt with completely.
    void settle(Ending ending);
    /// The ending once it has settled; nothing when `patience` is over first.
    std::optional<Ending> waitUntilSettled(std::chrono::milliseconds patience);

private:
    std::atomic<bool> mStarted{false};
    std::atomic<float> mPercent{0.0F};
    std::atomic<bool> mClaimed{false};

    std::mutex mMutex; ///< guards mEnding
    std::condition_variable mChanged;
    std::optional<Ending> mEnding;
};

} // namespace launcher

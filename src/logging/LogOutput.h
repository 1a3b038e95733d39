#pragma once

#include "log/Replaceable.h"
#include "logging/ILogger.h"
#include "logging/LifeCycleFunctions.h"
#include "logging/LogRecord.h"
#include "logging/Scrubber.h"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// What the root logger's worker does with a record: scrubs it, makes the line and gives it to the
/// sinks. Only the worker's thread uses it, but for the two setters of special sinks.
class LogOutput {
public:
    /// Lines of this file are the engine's.
    static constexpr std::string_view kEngineFile = "ZEL";
    static constexpr std::string_view kLifeCycleTag = "AppLifeCycle #";

    /// False when the sink is already registered.
    bool addSink(std::shared_ptr<ILogger> sink);
    /// False when the string is already masked.
    bool addBlockedString(std::string text) { return mScrubber.add(std::move(text)); }
    void scrub(std::string& text) { mScrubber.scrub(text); }
    void write(const LogRecord& record) noexcept;
    void flush();

    /// From then on the engine's lines go to this sink only. Any thread.
    void setEngineSink(std::shared_ptr<ILogger> sink) { mEngineSink.set(std::move(sink)); }
    /// From then on life-cycle records go to this sink only, and only those of `functions`. Any
    /// thread, once.
    void setLifeCycleSink(std::shared_ptr<ILogger> sink, LifeCycleFunctions functions);

    /// Times in the computer's own zone, with its distance from UTC. Any thread.
    void setUseLocalTime(bool uses) noexcept { mUsesLocalTime.store(uses); }

private:
    /// Set while the worker runs.
    using SpecialSink = Replaceable<std::shared_ptr<ILogger>>;

    void expand(const LogRecord& record);
    void cleanMessage();
    void formatLine(const LogRecord& record);
    void dispatch(bool isLifeCycleRecord);
    void writeTo(ILogger& sink);

    std::vector<std::shared_ptr<ILogger>> mSinks;
    Scrubber mScrubber;
    SpecialSink mEngineSink;
    SpecialSink mLifeCycleSink;
    LifeCycleFunctions mLifeCycleFunctions;
    LogComponents mComponents; ///< of the line in work; kept for its buffers
    std::string mLine;         ///< likewise
    std::atomic<bool> mUsesLocalTime{false};
    bool mLastWasLocal = false;
    std::time_t mLastTime = -1;
    std::uint32_t mLastThreadId = 0; ///< none has this
};

} // namespace tarn

#include "logging/LogOutput.h"

#include "logging/ControlCharacters.h"
#include "logging/Timestamp.h"
#include "platform/Identity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

namespace tarn {
namespace {

template <typename Number>
void appendNumber(std::string& text, Number number, int base = 10) {
    std::array<char, 24> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, base);
    text.append(buffer.data(), end.ptr);
}

const std::string& processIdText() {
    // Never destroyed: the worker writes lines while the process exits.
    static const std::string& text = *new std::string(std::to_string(platform::processId()));
    return text;
}

/// A sink that throws must neither end the worker nor, by a log line of its own, be called again
/// without end; it is told of on the standard error stream, once.
void reportFailedSink() noexcept {
    static std::atomic<bool> isReported{false};
    if (!isReported.exchange(true)) {
        std::fputs("A log sink failed; lines may be missing from its log.\n", stderr);
    }
}

} // namespace

bool LogOutput::addSink(std::shared_ptr<ILogger> sink) {
    if (std::ranges::find(mSinks, sink) != mSinks.end()) {
        return false;
    }
    mSinks.push_back(std::move(sink));
    return true;
}

void LogOutput::setLifeCycleSink(std::shared_ptr<ILogger> sink, LifeCycleFunctions functions) {
    mLifeCycleFunctions = std::move(functions);
    mLifeCycleSink.set(std::move(sink));
}

void LogOutput::write(const LogRecord& record) noexcept {
    try {
        expand(record);
        cleanMessage();
        const bool isLifeCycleRecord = mComponents.tag == kLifeCycleTag;
        formatLine(record);
        dispatch(isLifeCycleRecord);
    } catch (...) {
        reportFailedSink(); // for want of memory
    }
}

void LogOutput::cleanMessage() {
    std::string& message = mComponents.message;
    mScrubber.scrub(message);
    if (mComponents.file == kEngineFile && message.find('\n') != std::string::npos) {
        std::ranges::replace(message, '\n', ' ');
        mScrubber.scrub(message); // joined lines may spell what the single ones did not
    }
    escapeControlCharacters(message);
}

void LogOutput::expand(const LogRecord& record) {
    const bool usesLocalTime = mUsesLocalTime.load(std::memory_order_relaxed);
    if (record.time != mLastTime || usesLocalTime != mLastWasLocal) {
        mComponents.timestamp = timestampText(record.time, usesLocalTime);
        mLastTime = record.time;
        mLastWasLocal = usesLocalTime;
    }
    if (record.threadId != mLastThreadId) {
        mComponents.threadId = "0x";
        appendNumber(mComponents.threadId, record.threadId, 16);
        mLastThreadId = record.threadId;
    }
    mComponents.level = RootLoggerLevel::levelText(record.level);
    mComponents.processId = processIdText();
    mComponents.threadName = record.threadName;
    mComponents.file = record.file;
    mComponents.function = record.function;
    mComponents.message = record.message;
    mComponents.tag = record.tag;
    mComponents.line = record.line;
}

void LogOutput::formatLine(const LogRecord& record) {
    mLine.clear();
    const auto append = [&](auto... parts) { (mLine.append(parts), ...); };
    using View = std::string_view;
    const View tag = mComponents.tag == kLifeCycleTag ? View() : View(mComponents.tag);
    append(View(mComponents.timestamp), View(" <"), View(mComponents.level), View("> ["),
           View(mComponents.processId), View(":"), View(mComponents.threadId), View("]["),
           View(mComponents.threadName), View("]"), View(mComponents.file), View(":"));
    appendNumber(mLine, record.line);
    append(View(" "), View(mComponents.function), View(":"), tag, View(":"),
           View(mComponents.message));
}

void LogOutput::dispatch(bool isLifeCycleRecord) {
    const auto* const engineSink = mEngineSink.get();
    const auto* const lifeCycleSink = mLifeCycleSink.get();
    if (engineSink != nullptr && mComponents.file == kEngineFile) {
        writeTo(**engineSink);
    } else if (lifeCycleSink == nullptr || !isLifeCycleRecord) {
        for (const auto& sink : mSinks) {
            writeTo(*sink);
        }
    } else if (mLifeCycleFunctions.contains(mComponents.file, mComponents.function)) {
        writeTo(**lifeCycleSink);
    }
}

void LogOutput::writeTo(ILogger& sink) {
    try {
        sink.log(mLine, mComponents);
    } catch (...) {
        reportFailedSink();
    }
}

void LogOutput::flush() {
    const auto flushSink = [](ILogger& sink) {
        try {
            sink.flush();
        } catch (...) {
            reportFailedSink();
        }
    };
    for (const auto& sink : mSinks) {
        flushSink(*sink);
    }
    for (const auto* special : {mEngineSink.get(), mLifeCycleSink.get()}) {
        if (special != nullptr) {
            flushSink(**special);
        }
    }
}

} // namespace tarn

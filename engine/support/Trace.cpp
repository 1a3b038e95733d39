#include "engine/support/Trace.h"

#include "engine/support/AvHandles.h"
#include "engine/support/Complaints.h"
#include "engine/support/SinkGate.h"
#include "zel/IZelTraceSink.h"

#include <atomic>
#include <cstdarg>

extern "C" {
#include <libavutil/log.h>
}

namespace zelcore {

namespace {

std::atomic<std::int32_t> traceMaxLevel{2};
std::atomic<bool> hasTraceSink{false};

SinkGate<zel::IZelTraceSink>& traceGate() {
    // Leaked: engine threads trace while exit() runs the destructors of static objects.
    static auto& gate = *new SinkGate<zel::IZelTraceSink>();
    return gate;
}

void onFfmpegMessage(void* object, int level, const char* format, va_list arguments) {
    Complaints::hear(object, level, format);
    if (level > AV_LOG_VERBOSE) {
        return;
    }
    const TraceLevel as = level <= AV_LOG_ERROR     ? TraceLevel::Warning
                          : level <= AV_LOG_WARNING ? TraceLevel::Info
                          : level <= AV_LOG_INFO    ? TraceLevel::Debug
                                                    : TraceLevel::Trace;
    if (!isTraced(as)) {
        return;
    }
    char line[1024] = {};
    int printPrefix = 1;
    av_log_format_line2(object, level, format, arguments, line, sizeof line, &printPrefix);
    std::string message(line);
    while (message.ends_with('\n') || message.ends_with('\r')) {
        message.pop_back();
    }
    trace(as, message);
}

} // namespace

bool isTraced(TraceLevel level) {
    return hasTraceSink.load(std::memory_order_relaxed) &&
           static_cast<std::int32_t>(level) <= traceMaxLevel.load(std::memory_order_relaxed);
}

void trace(TraceLevel level, const std::string& line) noexcept {
    if (!isTraced(level)) {
        return;
    }
    try {
        traceGate().call([&](zel::IZelTraceSink& sink) {
            sink.OnTrace(static_cast<std::uint32_t>(level), line.c_str());
        });
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no one left to tell
    }
}

void setTraceSink(zel::IZelTraceSink* sink) {
    hasTraceSink = sink != nullptr;
    traceGate().set(sink);
}

void dropTraceSink() {
    hasTraceSink = false;
    traceGate().drop();
}

void setTraceMaxLevel(std::int32_t maxLevel) {
    traceMaxLevel = maxLevel;
}

void traceFfmpeg() {
    av_log_set_callback(onFfmpegMessage);
}

} // namespace zelcore

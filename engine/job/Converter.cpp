#include "engine/job/Converter.h"

#include "engine/job/Ending.h"
#include "engine/job/JobRegistry.h"
#include "engine/support/Trace.h"
#include "zel/EngineContract.h"

#include <algorithm>
#include <span>

namespace zelcore {

namespace {

// Far beyond any recording; a larger count is a mistake of the caller.
constexpr std::uint64_t kMostSources = 10'000;

std::int32_t refuse(ErrorCode code, const char* why) {
    if (code != ErrorCode::Busy) {
        keepEnding({static_cast<std::int32_t>(code), why});
    }
    trace(TraceLevel::Error, text("Error ", static_cast<std::int32_t>(code), ": ", why));
    return static_cast<std::int32_t>(code);
}

} // namespace

std::int32_t Converter::StartSingle(const char* source, const char* destination,
                                    std::uint32_t engineParam1, std::uint32_t engineParam2) {
    return StartMultiple(&source, 1, destination, engineParam1, engineParam2);
}

std::int32_t Converter::StartMultiple(const char* const* sources, std::uint64_t count,
                                      const char* destination, std::uint32_t engineParam1,
                                      std::uint32_t engineParam2) {
    try {
        trace(TraceLevel::Trace, text("Start with ", count, " sources, parameters ", engineParam1,
                                      " and ", engineParam2, ", which mean nothing here"));
        return start(sources, count, destination);
    } catch (...) {
        return refuse(ErrorCode::OutOfMemory, "Out of memory");
    }
}

std::int32_t Converter::start(const char* const* sources, std::uint64_t count,
                              const char* destination) {
    if (count == 0 || count > kMostSources) {
        trace(TraceLevel::Error, text("Wrong number of sources: ", count));
        return zel::kZelSrcFileNumberError;
    }
    const auto isMissing = [](const char* path) { return path == nullptr || *path == '\0'; };
    if (sources == nullptr || isMissing(destination) ||
        std::ranges::any_of(std::span(sources, count), isMissing)) {
        return refuse(ErrorCode::InvalidArgument, "A path is missing");
    }
    const std::lock_guard lock(mMutex);
    JobRegistry& registry = JobRegistry::instance();
    if (mJob != nullptr && registry.isRunning(mJob.get())) {
        return refuse(ErrorCode::Busy, "This converter is at work already");
    }
    mJob = std::make_shared<ConversionJob>(std::vector<std::string>(sources, sources + count),
                                           destination, &mSink);
    return registry.start(mJob)
               ? zel::kZelSuccess
               : refuse(ErrorCode::InternalError, "There is no thread for the conversion");
}

} // namespace zelcore

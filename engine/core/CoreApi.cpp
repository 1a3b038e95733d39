#include "engine/core/CoreApi.h"

#include "engine/core/Converter.h"
#include "engine/core/JobRegistry.h"
#include "engine/core/Trace.h"
#include "zel/EngineContract.h"

extern "C" {

std::int32_t ZelCoreCreateConverter(zel::IZelMediaConverter** instance,
                                    zel::IZelMediaConverterSink* sink) {
    if (instance == nullptr || sink == nullptr) {
        return static_cast<std::int32_t>(zelcore::ErrorCode::InvalidArgument);
    }
    *instance = nullptr;
    try {
        // Leaked: the contract has no release, and the program may start it at any time.
        *instance = new zelcore::Converter(*sink);
        return zel::kZelSuccess;
    } catch (...) {
        return static_cast<std::int32_t>(zelcore::ErrorCode::OutOfMemory);
    }
}

std::int32_t ZelCoreStopConversions(std::uint32_t timeoutMilliseconds) {
    try {
        const std::chrono::milliseconds timeout(timeoutMilliseconds);
        return zelcore::JobRegistry::instance().stopAll(timeout)
                   ? zel::kZelSuccess
                   : static_cast<std::int32_t>(zelcore::ErrorCode::Busy);
    } catch (...) {
        return static_cast<std::int32_t>(zelcore::ErrorCode::InternalError);
    }
}

void ZelCoreAbandonConversions() {
    try {
        zelcore::JobRegistry::instance().abandonAll();
    } catch (...) { // NOLINT(bugprone-empty-catch): an unload cannot fail
    }
}

void ZelCoreSetTraceSink(zel::IZelTraceSink* sink) {
    try {
        zelcore::setTraceSink(sink);
    } catch (...) { // NOLINT(bugprone-empty-catch): without memory there is no sink
    }
}

void ZelCoreSetTraceMaxLevel(std::int32_t maxLevel) {
    zelcore::setTraceMaxLevel(maxLevel);
}

void ZelCoreDropTraceSink() {
    try {
        zelcore::dropTraceSink();
    } catch (...) { // NOLINT(bugprone-empty-catch): an unload cannot fail
    }
}
}

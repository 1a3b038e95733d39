#include "engine/api/CoreApi.h"

#include "engine/job/Converter.h"
#include "engine/job/Ending.h"
#include "engine/job/JobRegistry.h"
#include "engine/platform/OsPath.h"
#include "engine/support/ConversionSettings.h"
#include "engine/support/Losses.h"
#include "engine/support/Trace.h"
#include "threading/BoundedLock.h"
#include "zel/EngineContract.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace {

// From its loading on, before anybody has called it: the two faces' unload hooks already make what
// is leaked here, and the threads of conversions may outlive every handle.
const struct Pin {
    Pin() { zelcore::pinThisLibrary(); }
} pin;

/// The instances: the contract has no release, they end with mediaconverter.
struct Converters {
    std::mutex mutex;
    std::vector<std::unique_ptr<zelcore::Converter>> all;
};

Converters& converters() {
    // Leaked: what the program still holds at exit() stays valid.
    static auto& instance = *new Converters();
    return instance;
}

void handOver(const std::string& sentence, char* text, std::uint32_t capacity) {
    if (text != nullptr && capacity > 0) {
        const std::size_t length = std::min<std::size_t>(sentence.size(), capacity - 1);
        std::copy_n(sentence.data(), length, text);
        text[length] = '\0';
    }
}

} // namespace

extern "C" {

std::int32_t ZelCoreCreateConverter(zel::IZelMediaConverter** instance,
                                    zel::IZelMediaConverterSink* sink) {
    if (instance == nullptr || sink == nullptr) {
        return static_cast<std::int32_t>(zelcore::ErrorCode::InvalidArgument);
    }
    *instance = nullptr;
    try {
        auto made = std::make_unique<zelcore::Converter>(*sink);
        const std::lock_guard lock(converters().mutex);
        *instance = converters().all.emplace_back(std::move(made)).get();
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

std::int32_t ZelCoreConversionLosses(std::int32_t accepts, char* text, std::uint32_t capacity) {
    try {
        zelcore::acceptLosses(accepts != 0);
        const std::string sentence = zelcore::lastLossSentence();
        handOver(sentence, text, capacity);
        return sentence.empty() ? 0 : static_cast<std::int32_t>(sentence.size() + 1);
    } catch (...) {
        return static_cast<std::int32_t>(zelcore::ErrorCode::OutOfMemory);
    }
}

std::int32_t ZelCoreConversionEnding(char* text, std::uint32_t capacity) {
    try {
        const zelcore::Ending ending = zelcore::lastEnding();
        handOver(ending.reason, text, capacity);
        return ending.code;
    } catch (...) {
        return static_cast<std::int32_t>(zelcore::ErrorCode::OutOfMemory);
    }
}

std::int32_t ZelCoreConversionSetting(const char* name, const char* value) {
    return name != nullptr && value != nullptr && zelcore::changeSetting(name, value)
               ? zel::kZelSuccess
               : static_cast<std::int32_t>(zelcore::ErrorCode::InvalidArgument);
}

void ZelCoreAbandonConversions() {
    try {
        zelcore::JobRegistry::instance().abandonAll();
        if (const auto lock = tarn::lockWithin(converters().mutex, tarn::kUnloadBound)) {
            converters().all.clear();
        }
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

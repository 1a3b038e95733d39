#include "logging/LogRecord.h"

#include "platform/Identity.h"
#include "threading/ThreadUtilities.h"

#include <algorithm>
#include <string>

namespace tarn {
namespace {

/// Every line passes here, and find_last_of costs a call for each character.
std::string_view lastComponent(std::string_view path) {
    const auto isSeparator = [](char character) { return character == '/' || character == '\\'; };
    const auto separator = std::find_if(path.rbegin(), path.rend(), isSeparator);
    return {separator.base(), path.end()};
}

} // namespace

void LogRecord::capture(std::string_view message, RootLoggerLevel::Level messageLevel,
                        std::int32_t sourceLine, std::string_view file, std::string_view function,
                        std::string_view tag) {
    time = std::time(nullptr);
    level = messageLevel;
    threadId = platform::threadId();
    line = sourceLine;
    std::string longName;
    const std::array<std::string_view, kParts> texts{ThreadUtilities::currentThreadName(longName),
                                                     lastComponent(file), function, tag, message};
    std::size_t size = 0;
    for (std::size_t number = 0; number < kParts; ++number) {
        size += texts[number].size();
        mEnds[number] = size;
    }
    mLong = size > kUsualSize ? std::make_unique_for_overwrite<char[]>(size) : nullptr;
    char* to = mLong != nullptr ? mLong.get() : mUsual.data();
    for (const std::string_view text : texts) {
        to += text.copy(to, text.size());
    }
}

} // namespace tarn

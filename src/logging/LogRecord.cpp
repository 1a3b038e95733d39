#include "logging/LogRecord.h"

#include "platform/Identity.h"
#include "threading/ThreadUtilities.h"

#include <algorithm>

namespace tarn {
namespace {

/// Every line passes here, and find_last_of costs a call for each character.
std::string_view lastComponent(std::string_view path) {
    const auto isSeparator = [](char character) { return character == '/' || character == '\\'; };
    const auto separator = std::find_if(path.rbegin(), path.rend(), isSeparator);
    return {separator.base(), path.end()};
}

} // namespace

LogRecord LogRecord::capture(std::string_view message, RootLoggerLevel::Level level,
                             std::int32_t line, std::string_view file, std::string_view function,
                             std::string_view tag, std::string& whenLong) {
    return {.time = std::time(nullptr),
            .threadId = platform::threadId(),
            .line = line,
            .level = level,
            .threadName = ThreadUtilities::currentThreadName(whenLong),
            .file = lastComponent(file),
            .function = function,
            .tag = tag,
            .message = message};
}

} // namespace tarn

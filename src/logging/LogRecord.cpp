#include "logging/LogRecord.h"

#include "platform/Identity.h"
#include "threading/ThreadUtilities.h"

namespace tarn {

void LogRecord::capture(std::string_view text, RootLoggerLevel::Level messageLevel,
                        std::int32_t sourceLine, std::string_view file, std::string_view function,
                        std::string_view tag) {
    time = std::time(nullptr);
    level = messageLevel;
    threadId = platform::threadId();
    line = sourceLine;
    message = text;
    if (const auto separator = file.find_last_of("/\\"); separator != std::string_view::npos) {
        file.remove_prefix(separator + 1);
    }
    mTexts.clear();
    ThreadUtilities::appendCurrentThreadName(mTexts);
    mFileAt = mTexts.size();
    mTexts += file;
    mFunctionAt = mTexts.size();
    mTexts += function;
    mTagAt = mTexts.size();
    mTexts += tag;
}

} // namespace tarn

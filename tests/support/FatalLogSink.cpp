#include "support/FatalLogSink.h"

#include "support/ErrorWatch.h"

namespace tarn::testing {

void FatalLogSink::log(const std::string& line, const LogComponents& components) {
    if (components.level == "Error") {
        noteErrorLine(components.message);
    }
    const std::lock_guard lock(mMutex);
    mWritten.emplace_back(line, components);
}

void FatalLogSink::clearLogs() {
    take();
}

void FatalLogSink::flush() {
    const std::lock_guard lock(mMutex);
    ++mFlushCount;
}

std::vector<std::string> FatalLogSink::lines() const {
    const std::lock_guard lock(mMutex);
    std::vector<std::string> texts;
    for (const Written& written : mWritten) {
        texts.push_back(written.first);
    }
    return texts;
}

std::vector<std::string> FatalLogSink::messages() const {
    const std::lock_guard lock(mMutex);
    std::vector<std::string> texts;
    for (const Written& written : mWritten) {
        texts.push_back(written.second.message);
    }
    return texts;
}

int FatalLogSink::flushCount() const {
    const std::lock_guard lock(mMutex);
    return mFlushCount;
}

std::vector<FatalLogSink::Written> FatalLogSink::take() {
    const std::lock_guard lock(mMutex);
    mFlushCount = 0;
    return std::exchange(mWritten, {});
}

} // namespace tarn::testing

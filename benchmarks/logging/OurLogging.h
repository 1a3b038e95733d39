#pragma once

#include "AsyncQueue/AsyncQueue.h"
#include "log/LogCall.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace benchmarks {

/// The root logger with one file sink, as the program sets it up, but for the size limit: a file
/// that is never switched can be counted afterwards. One per process.
class OurLogging {
public:
    OurLogging(const std::string& folder, const std::vector<std::string>& blocklist);

    void log(long frame, int microseconds) {
        TARN_LOG(tarn::RootLoggerLevel::Info,
                 "frame " << frame << " of the recording was written to the destination file in "
                          << microseconds << " us");
    }
    void log(std::string_view text) { TARN_LOG(tarn::RootLoggerLevel::Info, text); }
    /// Waits until all that was logged is written and flushed.
    void drain();
    std::size_t backlog() { return mQueue->pendingTaskCount(); }
    std::string path() const { return mPath; }

private:
    std::string mPath;
    std::shared_ptr<tarn::AsyncQueue> mQueue;
};

} // namespace benchmarks

#pragma once

// The same level names as ours, so that both sides write the same text.
#define SPDLOG_LEVEL_NAMES \
    { "Trace", "Debug", "Info", "Warn", "Error", "Critical", "Off" }

#include <spdlog/async.h>
#include <spdlog/details/file_helper.h>
#include <spdlog/sinks/base_sink.h>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace benchmarks {

/// Writes the file as ours does: flushed on every second line, scrubbed by find and replace when
/// there is a blocklist.
class PeerSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    PeerSink(const std::string& path, std::vector<std::string> blocklist);

    std::atomic<unsigned>& flushes() { return mFlushes; }

private:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;
    std::string scrubbed(spdlog::string_view_t text) const;

    spdlog::details::file_helper mFile;
    std::vector<std::string> mBlocklist;
    bool mFlushNext = true;
    std::atomic<unsigned> mFlushes{0};
};

/// spdlog's asynchronous logger: blocking, one worker, its standard queue length, and a pattern
/// that gives the line of our own logger.
class PeerLogging {
public:
    PeerLogging(const std::string& folder, const std::vector<std::string>& blocklist);

    void log(long frame, int microseconds) {
        mLogger->log(spdlog::source_loc{"OurLogging", __LINE__, static_cast<const char*>(__func__)},
                     spdlog::level::info,
                     "frame {} of the recording was written to the destination file in {} us",
                     frame, microseconds);
    }
    void log(std::string_view text) {
        mLogger->log(spdlog::source_loc{"OurLogging", __LINE__, static_cast<const char*>(__func__)},
                     spdlog::level::info, "{}", text);
    }
    /// Waits until all that was logged is written and flushed.
    void drain();
    std::size_t backlog() { return mPool->queue_size(); }
    std::string path() const { return mPath; }

private:
    std::string mPath;
    std::shared_ptr<spdlog::details::thread_pool> mPool;
    std::shared_ptr<PeerSink> mSink;
    std::shared_ptr<spdlog::async_logger> mLogger;
};

} // namespace benchmarks

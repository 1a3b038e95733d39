#include "logging/PeerLogging.h"

#include <spdlog/pattern_formatter.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace benchmarks {
namespace {

constexpr const char* kPattern = "%Y-%m-%dT%H:%M:%SZ <%l> [%P:0x%t][]%s:%# %!::%v";
constexpr std::string_view kMask = "********";

} // namespace

PeerSink::PeerSink(const std::string& path, std::vector<std::string> blocklist)
    : base_sink(
          std::make_unique<spdlog::pattern_formatter>(kPattern, spdlog::pattern_time_type::utc)),
      mBlocklist(std::move(blocklist)) {
    // The longest first, or a short string would break up a long one that holds it.
    std::ranges::sort(mBlocklist, std::ranges::greater{}, &std::string::size);
    mFile.open(path, true);
}

std::string PeerSink::scrubbed(spdlog::string_view_t text) const {
    std::string result(text.data(), text.size());
    for (const std::string& secret : mBlocklist) {
        for (std::size_t at = 0; (at = result.find(secret, at)) != std::string::npos;
             at += kMask.size()) {
            result.replace(at, secret.size(), kMask);
        }
    }
    return result;
}

void PeerSink::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    if (mBlocklist.empty()) {
        formatter_->format(message, line);
    } else {
        const std::string text = scrubbed(message.payload);
        spdlog::details::log_msg clean = message;
        clean.payload = text;
        formatter_->format(clean, line);
    }
    mFile.write(line);
    if (mFlushNext) {
        mFile.flush();
    }
    mFlushNext = !mFlushNext;
}

void PeerSink::flush_() {
    mFile.flush();
    mFlushes.fetch_add(1);
    mFlushes.notify_all();
}

PeerLogging::PeerLogging(const std::string& folder, const std::vector<std::string>& blocklist)
    : mPath(folder + "/peer_log.txt"),
      mPool(std::make_shared<spdlog::details::thread_pool>(spdlog::details::default_async_q_size,
                                                           1U)),
      mSink(std::make_shared<PeerSink>(mPath, blocklist)),
      mLogger(std::make_shared<spdlog::async_logger>("peer", mSink, mPool,
                                                     spdlog::async_overflow_policy::block)) {
}

void PeerLogging::drain() {
    const unsigned before = mSink->flushes().load();
    mLogger->flush();
    mSink->flushes().wait(before);
}

} // namespace benchmarks

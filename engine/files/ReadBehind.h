#pragma once

#include "engine/files/StoredReader.h"
#include "engine/support/AvHandles.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zelcore {

/// Reads packets of a file back, and compares them, while later ones are still being written: what
/// was right need not be read again at the end. Where the packets lie it finds out by itself: they
/// follow one another, each track's in their order. It has no verdict: where it finds something
/// else, or no memory or thread, it gives up, and all the rest is left to whoever verifies the
/// file.
class ReadBehind {
public:
    /// The first packet will lie at `begin`.
    ReadBehind(std::string path, std::uint64_t begin);
    ReadBehind(const ReadBehind&) = delete;
    ReadBehind& operator=(const ReadBehind&) = delete;
    ~ReadBehind();

    /// A packet that is on its way into the file, as it is stored. `time` tells which of two tracks
    /// comes first.
    void expect(std::size_t track, std::uint64_t hash, std::size_t size, Ticks time);
    /// Everything before `end` is written.
    void advance(std::uint64_t end);
    /// Ends. The number of samples, the first ones of the file, that were read back and are right:
    /// `samples` are in the order of their places, as the finished file has them.
    std::size_t countOf(const std::vector<StoredSample>& samples);

private:
    struct Expected {
        std::size_t track = 0;
        Ticks time = 0;
        std::uint64_t hash = 0;
        std::uint32_t size = 0;
    };
    using Lanes = std::vector<std::deque<Expected>>;

    void run() noexcept;
    bool awaitNews(Lanes& lanes, std::uint64_t& end);
    /// Reads the next packet; false when it is none of those expected, or is not written yet.
    bool readNext(StoredReader& reader, Lanes& lanes, std::uint64_t end);
    void finish();

    const std::string mPath;
    std::vector<Expected> mNew; ///< since the last call of advance()
    std::uint64_t mAdvanced = 0;
    std::size_t mGiven = 0;

    std::mutex mMutex;
    std::condition_variable mHasNews;
    std::vector<Expected> mExpected; ///< guarded by mMutex, as the next one
    std::uint64_t mEnd = 0;
    std::atomic<bool> mIsEnding{false};

    std::atomic<std::size_t> mCount{0}; ///< of samples that were right
    // The thread's, until it has ended.
    std::uint64_t mPosition;
    std::uint64_t mDigest = 0; ///< of those samples
    std::vector<std::deque<Expected>*> mCandidates;
    std::thread mThread;
};

} // namespace zelcore

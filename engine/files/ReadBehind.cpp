#include "engine/files/ReadBehind.h"

#include "engine/platform/OsPath.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace zelcore {

namespace {

/// A reader that lags further behind than this would take more memory than it saves time.
constexpr std::size_t kMostExpected = 400'000;

std::uint64_t chain(std::uint64_t before, const StoredSample& sample) {
    const std::array<std::uint64_t, 4> link = {before, sample.position, sample.hash, sample.size};
    return hashOf(link.data(), sizeof link);
}

} // namespace

ReadBehind::ReadBehind(std::string path, std::uint64_t begin)
    : mPath(std::move(path)), mPosition(begin) {
}

ReadBehind::~ReadBehind() {
    finish();
}

void ReadBehind::expect(std::size_t track, std::uint64_t hash, std::size_t size, Ticks time) {
    if (!mIsEnding) {
        mNew.push_back({track, time, hash, static_cast<std::uint32_t>(size)});
    }
}

void ReadBehind::advance(std::uint64_t end) {
    if (end == mAdvanced || mIsEnding) {
        return;
    }
    mAdvanced = end;
    {
        const std::lock_guard lock(mMutex);
        mExpected.insert(mExpected.end(), mNew.begin(), mNew.end());
        mEnd = end;
        mGiven += mNew.size();
        mIsEnding = mGiven - mCount > kMostExpected;
    }
    mNew.clear();
    mHasNews.notify_one();
    if (!mThread.joinable()) {
        try {
            mThread = std::thread([this] { run(); });
        } catch (const std::system_error&) {
            mIsEnding = true;
        }
    }
}

void ReadBehind::finish() {
    {
        const std::lock_guard lock(mMutex);
        mIsEnding = true;
    }
    mHasNews.notify_one();
    if (mThread.joinable()) {
        mThread.join();
    }
}

std::size_t ReadBehind::countOf(const std::vector<StoredSample>& samples) {
    finish();
    const std::size_t count = mCount;
    if (count > samples.size()) {
        return 0;
    }
    std::uint64_t digest = 0;
    std::for_each_n(samples.begin(), count,
                    [&](const StoredSample& each) { digest = chain(digest, each); });
    return digest == mDigest ? count : 0;
}

void ReadBehind::run() noexcept {
    try {
        prepareEngineThread("zel-readback");
        OsFile file;
        if (OsFile::openForReading(mPath, file) != 0) {
            return;
        }
        StoredReader reader(file, StoredReader::kBlock);
        Lanes lanes;
        for (std::uint64_t end = 0; awaitNews(lanes, end);) {
            reader.setEnd(end);
            while (!mIsEnding && readNext(reader, lanes, end)) {
            }
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): see above, it gives up
    }
    mIsEnding = true;
}

bool ReadBehind::awaitNews(Lanes& lanes, std::uint64_t& end) {
    std::unique_lock lock(mMutex);
    mHasNews.wait(lock, [&] { return mIsEnding || mEnd > end; });
    for (const Expected& each : mExpected) {
        lanes.resize(std::max(lanes.size(), each.track + 1));
        lanes[each.track].push_back(each);
    }
    mExpected.clear();
    end = mEnd;
    return !mIsEnding;
}

bool ReadBehind::readNext(StoredReader& reader, Lanes& lanes, std::uint64_t end) {
    mCandidates.clear();
    for (std::deque<Expected>& lane : lanes) {
        if (!lane.empty()) {
            mCandidates.push_back(&lane);
        }
    }
    std::ranges::sort(mCandidates, {}, [](const auto* lane) {
        return std::pair(lane->front().time, lane->front().track);
    });
    for (std::deque<Expected>* lane : mCandidates) {
        const Expected& next = lane->front();
        const StoredSample sample{mPosition, next.hash, next.size};
        if (mPosition + next.size > end) {
            return false;
        }
        if (reader.hashOf(sample) == next.hash) {
            mDigest = chain(mDigest, sample);
            mPosition += next.size;
            mCount++;
            lane->pop_front();
            return true;
        }
    }
    mIsEnding = mIsEnding || !mCandidates.empty();
    return false;
}

} // namespace zelcore

#pragma once

#include "engine/support/AvHandles.h"

#include <cstdint>
#include <vector>

namespace zelcore {

/// Where in its file a demuxer found something broken. Demuxers tend to step over damage without an
/// error: what they say in their messages is the only sign of it.
class Complaints {
public:
    /// While it lives, its thread's messages about `demuxer` are complaints.
    class Listening {
    public:
        Listening(Complaints& complaints, const AVFormatContext& demuxer);
        Listening(const Listening&) = delete;
        Listening& operator=(const Listening&) = delete;
        ~Listening();
    };

    Complaints() { mPositions.reserve(kMostKept); } // none may allocate inside FFmpeg's calls
    void add(std::int64_t position) noexcept;
    /// Byte positions, in the order of their finding.
    const std::vector<std::int64_t>& positions() const { return mPositions; }

    /// Any message of FFmpeg's, from whatever thread, before its arguments are put in.
    static void hear(const void* object, int level, const char* format) noexcept;

private:
    static constexpr std::size_t kMostKept = 1000;
    std::vector<std::int64_t> mPositions;
    const AVFormatContext* mDemuxer = nullptr;
};

} // namespace zelcore

#pragma once

#include "engine/files/SourceFile.h"
#include "engine/support/AvHandles.h"

namespace zelcore {

/// The times of a Matroska file's packets before zero. The demuxer leaves them out, and what
/// libavformat guesses instead is wrong or nothing.
class BlockTimes {
public:
    /// `isMatroska` false: nothing is done.
    BlockTimes(const SourceFile& file, bool isMatroska);
    /// Gives the packet, the next one of the file, its time where it lies before zero.
    void restore(AVPacket& packet, const AVStream& stream);

private:
    const SourceFile& mFile;
    std::int64_t mFirstCluster = kNoTime;
    bool mIsBehindZero = false; ///< a packet was
};

} // namespace zelcore

#pragma once

#include "engine/files/DestinationFile.h"
#include "engine/media/AdtsFilter.h"
#include "engine/media/Chapters.h"
#include "engine/media/Cover.h"
#include "engine/media/Extent.h"
#include "engine/media/WrittenTrack.h"
#include "engine/support/AvHandles.h"

#include <cstdint>
#include <vector>

namespace zelcore {

/// The MP4 file under construction. Tracks first, then writeHeader, packets, finish.
class Muxer {
public:
    /// The index goes behind the packets, or in front of them: those are then moved at the end.
    Muxer(DestinationFile& file, bool isIndexInFront);

    /// `parameters` are copied, `timeBase` is the clock of the packets to come.
    AVStream& addTrack(const AVCodecParameters& parameters, AVRational timeBase);
    /// After all tracks.
    void addCover(const Cover& cover);
    void copyMetadata(const AVFormatContext& from);
    void writeHeader();
    /// `packet` is stamped in `timeBase` and left empty. Decoding times that do not grow are moved.
    /// Its duration counts where it is shown last of its track.
    void write(std::size_t track, AVPacket& packet, AVRational timeBase);
    /// In the order of their times; before finish.
    void setChapters(std::vector<Chapter> chapters);
    void finish();

    const std::vector<WrittenTrack>& written() const { return mWritten; }
    WrittenFile takeWritten() {
        return {std::move(mWritten), std::move(mChapters), std::move(mCover),
                std::move(mReadBehind)};
    }
    /// For a track whose packets an encoder made.
    void setTranscoded(std::size_t track) { mWritten[track].isTranscoded = true; }

private:
    void throwIfFailed(int result, const char* doing) const;
    /// What is on its way into a track.
    struct Lane {
        Extent extent;
        PacketPtr held; ///< the last packet, whose duration is known only at the end
        std::int64_t lastDts = kNoTime;
        AdtsFilter adtsFilter;
    };
    bool isText(std::size_t track) const { return mWritten[track].isText(); }
    void writeHeld(std::size_t track, std::int64_t duration);
    void writeCover();
    void finishTrack(std::size_t track);

    DestinationFile& mFile;
    const bool mIsIndexInFront;
    MuxerPtr mFormat;
    std::vector<WrittenTrack> mWritten;
    std::vector<Lane> mLanes;
    std::vector<Chapter> mChapters;
    std::vector<std::uint8_t> mCover;
    std::unique_ptr<ReadBehind> mReadBehind; ///< where packets stay in their places
};

} // namespace zelcore

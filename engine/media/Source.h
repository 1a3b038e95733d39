#pragma once

#include "engine/files/SourceFile.h"
#include "engine/media/BlockTimes.h"
#include "engine/media/Chapters.h"
#include "engine/media/Cover.h"
#include "engine/support/AvHandles.h"
#include "engine/support/Complaints.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelcore {

/// True for subtitles that are text, not pictures of it.
bool isTextSubtitle(const AVStream& stream);

/// One source: a part of the recording. What was found in it when it was first opened stays known
/// while it is closed, so that thousands of parts need neither memory nor open files before their
/// turn. Throws Failure for everything that is no recording.
class Source {
public:
    /// Opens it.
    Source(std::string path, const StopFlag& stop);

    const std::string& path() const { return mPath; }
    /// Of the file, as it was when it was first opened.
    const FileState& state() const { return mState; }
    /// Streams and metadata, no packets. Valid as long as this object, open or closed.
    const AVFormatContext& format() const { return *mKnown; }
    const AVStream& stream(std::size_t index) const { return *mKnown->streams[index]; }
    std::size_t streamCount() const { return mKnown->nb_streams; }
    /// Audio and video whose parameters are known; cover pictures, subtitles and data are not for
    /// the destination.
    bool isWanted(const AVStream& stream) const;
    /// Of an open source: the picture that stands for it.
    std::optional<int> giveCover(Cover& cover) const { return cover.takeFrom(*mDemuxer); }
    /// A trace line for each stream that is not wanted, but for the cover when that is `kept`.
    void traceUnwanted(std::optional<int> kept) const;

    /// The kind of an open source's stream, also of one that turned up after the first opening.
    AVMediaType kindOf(std::size_t index) const {
        return mDemuxer->streams[index]->codecpar->codec_type;
    }

    /// Of an open source, on its clock.
    std::vector<Chapter> chapters() const { return chaptersOf(*mDemuxer); }

    /// When its first wanted stream begins; 0 when nothing says.
    Ticks start() const;
    /// What the container says, 0 when it says nothing.
    Ticks duration() const;

    /// Ready to read from the beginning; throws when the file is no longer the one that was known.
    void open();
    void close();
    /// Of an open source. Steps over what is broken; false at the end. Throws when the file cannot
    /// be read or changed.
    bool read(AVPacket& packet);

    /// The container says that the file should be longer.
    bool isCutShort() const { return mMissingBytes > 0; }
    std::uint64_t missingBytes() const { return mMissingBytes; }
    /// Byte positions near which an open source was found broken so far, those in front of
    /// packets that are still to be read included.
    const std::vector<std::int64_t>& brokenAt() const { return mComplaints.positions(); }
    /// After the end: the demuxer left a part of the file unread that is more than filling.
    bool isUnreadToItsEnd() const { return mIsUnreadToItsEnd; }

private:
    void openDemuxer();
    void discardUnwanted();
    int readOnce(AVPacket& packet);
    /// A damaged index led the demuxer beyond the end.
    bool isMisledTo(std::int64_t position) const;
    void noteEnd();
    bool isFilledWithZeros(std::uint64_t from) const;

    const std::string mPath;
    const StopFlag& mStop;
    FileState mState;
    MuxerPtr mKnown;                   ///< never muxes: what was found, without the demuxer
    std::unique_ptr<SourceFile> mFile; ///< before the demuxer, which reads from it until it closes
    DemuxerPtr mDemuxer;
    std::optional<BlockTimes> mBlockTimes; ///< of an open source
    Complaints mComplaints;
    std::optional<std::uint64_t> mSkippedFrom; ///< nothing was recognised from here on
    std::uint64_t mDeclaredEnd = 0;
    std::uint64_t mMissingBytes = 0;
    bool mIsUnreadToItsEnd = false;
};

using Sources = std::vector<std::unique_ptr<Source>>;

} // namespace zelcore

#pragma once

#include "engine/core/AvHandles.h"
#include "engine/core/SourceFile.h"

#include <memory>
#include <string>
#include <vector>

namespace zelcore {

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
    /// A trace line for each stream that is not wanted.
    void traceUnwanted() const;

    /// Throws when a packet of this stream must not be missing from the destination: it is audio or
    /// video that could not be understood, and was taken for empty, when the source was opened.
    void throwIfNeeded(std::size_t index) const;

    /// When its first wanted stream begins; 0 when nothing says.
    Ticks start() const;
    /// What the container says, 0 when it says nothing.
    Ticks duration() const;

    /// Ready to read from the beginning; throws when the file is no longer the one that was known.
    void open();
    void close();
    /// Of an open source. False at the end, where the file was found sound; throws when reading
    /// fails.
    bool read(AVPacket& packet);

private:
    void openDemuxer();
    void discardUnwanted();

    const std::string mPath;
    const StopFlag& mStop;
    FileState mState;
    MuxerPtr mKnown;                   ///< never muxes: what was found, without the demuxer
    std::unique_ptr<SourceFile> mFile; ///< before the demuxer, which reads from it until it closes
    DemuxerPtr mDemuxer;
};

using Sources = std::vector<std::unique_ptr<Source>>;

} // namespace zelcore

#pragma once

#include "engine/core/AvHandles.h"
#include "engine/core/SourceFile.h"

#include <memory>
#include <string>
#include <vector>

namespace zelcore {

/// One opened source: a part of the recording. Throws Failure for everything that is no recording.
class Source {
public:
    Source(const std::string& path, const StopFlag& stop);

    const std::string& path() const { return mFile->path(); }
    const SourceFile& file() const { return *mFile; }
    const AVFormatContext& format() const { return *mDemuxer; }
    const AVStream& stream(std::size_t index) const { return *mDemuxer->streams[index]; }
    std::size_t streamCount() const { return mDemuxer->nb_streams; }
    /// Audio and video whose parameters are known; cover pictures, subtitles and data are not for
    /// the destination.
    bool isWanted(const AVStream& stream) const;
    /// Tells the demuxer to leave out the streams that are not wanted, with a trace line for each.
    void discardUnwanted();

    /// Throws when a packet of this stream must not be missing from the destination: it is audio or
    /// video that could not be understood, and was taken for empty, when the source was opened.
    void throwIfNeeded(std::size_t index) const;

    /// When its first wanted stream begins; 0 when nothing says.
    Ticks start() const;
    /// What the container says, 0 when it says nothing.
    Ticks duration() const;

    /// False at the end, where the file was found sound; throws when reading fails.
    bool read(AVPacket& packet);

private:
    std::unique_ptr<SourceFile> mFile; // before the demuxer, which reads from it until it closes
    DemuxerPtr mDemuxer;
};

using Sources = std::vector<std::unique_ptr<Source>>;

} // namespace zelcore

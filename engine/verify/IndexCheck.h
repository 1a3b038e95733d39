#pragma once

#include "engine/files/FileInput.h"
#include "engine/media/WrittenTrack.h"
#include "engine/verify/PacketCheck.h"

#include <cstdint>
#include <vector>

namespace zelcore {

/// What a player would take from a finished file's index, beside what was written. Everything here
/// throws VerificationFailed when they differ.
class IndexCheck {
public:
    IndexCheck(const OsFile& file, std::uint64_t size, const WrittenFile& written,
               const StopFlag& stop);

    /// Where the packets lie, in that order: one after the other up to `end`.
    std::vector<StoredSample> samples(std::uint64_t end) const;
    /// Reads the index to its end without the packets: each one's times, size and kind.
    void compareTimes();

private:
    void compareCover(const std::vector<std::uint8_t>& written) const;
    void compareChapters(const std::vector<Chapter>& written) const;
    void compareTrack(const AVStream& stream, const WrittenTrack& track) const;

    FileInput mInput;
    const StopFlag& mStop;
    std::vector<const WrittenTrack*> mTracks; ///< those that are in the file
    DemuxerPtr mDemuxer;
};

/// Opens a file that the MP4 muxer made, packets untouched by parsers and edit lists applied to the
/// times only. Throws VerificationFailed.
DemuxerPtr openFinished(FileInput& input);

} // namespace zelcore

#pragma once

#include "engine/files/ReadBehind.h"
#include "engine/media/Chapters.h"
#include "engine/media/StoredForm.h"
#include "engine/support/AvHandles.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace zelcore {

/// What went into one track of the destination: the verifier finds the same in the finished file,
/// or fails. Eight bytes for each packet.
class WrittenTrack {
public:
    explicit WrittenTrack(const AVCodecParameters& parameters);

    /// Stamped in the clock of the track, as it goes into the muxer.
    StoredPacket add(const AVPacket& packet, AVRational clock);

    AVMediaType type = AVMEDIA_TYPE_UNKNOWN;
    AVCodecID codec = AV_CODEC_ID_NONE;
    int width = 0;
    int height = 0;
    int sampleRate = 0;
    int channels = 0;
    std::vector<std::uint8_t> decoderData;
    bool isTranscoded = false; ///< by an encoder of ours: it has to decode again

    std::int64_t packets = 0;
    std::int64_t keyPackets = 0;
    AVRational timeBase{}; ///< of all times here
    std::int64_t firstPts = kNoTime;
    std::uint64_t times = 0;          ///< chained over all packets, see chain()
    std::deque<std::uint64_t> hashes; ///< of each packet as it is stored

    bool isText() const { return type == AVMEDIA_TYPE_SUBTITLE; }
    /// As the file has it: from the first packet's time to where the one shown last ends, or, where
    /// that is less, from the first decoding time to the end of the packet decoded last.
    std::int64_t duration() const;

    /// The next link of `times`.
    static std::uint64_t chain(std::uint64_t before, std::int64_t sinceFirstDts,
                               std::int64_t sinceFirstPts, std::int64_t size, bool isKey);

private:
    StoredForm mForm;
    std::int64_t mFirstDts = kNoTime;
    std::int64_t mShown = 0;
    std::int64_t mDecoded = 0;
};

/// What went into the destination.
struct WrittenFile {
    std::vector<WrittenTrack> tracks{};
    std::vector<Chapter> chapters{};
    std::vector<std::uint8_t> cover{}; ///< its bytes
    std::unique_ptr<ReadBehind> readBehind{};
};

} // namespace zelcore

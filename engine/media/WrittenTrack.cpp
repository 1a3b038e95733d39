#include "engine/media/WrittenTrack.h"

#include <algorithm>
#include <array>

namespace zelcore {

WrittenTrack::WrittenTrack(const AVCodecParameters& parameters)
    : type(parameters.codec_type),
      codec(parameters.codec_id),
      width(parameters.width),
      height(parameters.height),
      sampleRate(parameters.sample_rate),
      channels(parameters.ch_layout.nb_channels),
      decoderData(parameters.extradata, parameters.extradata + parameters.extradata_size),
      mForm(parameters) {
}

StoredPacket WrittenTrack::add(const AVPacket& packet, AVRational clock) {
    if (packet.size == 0) {
        return {}; // the muxer leaves it out
    }
    if (packets == 0) {
        timeBase = clock;
        mFirstDts = packet.dts;
        firstPts = packet.pts;
    }
    const StoredPacket stored = mForm.of({packet.data, static_cast<std::size_t>(packet.size)});
    const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
    times = chain(times, packet.dts - mFirstDts, packet.pts - firstPts, stored.size,
                  isKey || type != AVMEDIA_TYPE_VIDEO);
    hashes.push_back(stored.hash);
    ++packets;
    keyPackets += isKey ? 1 : 0;
    mShown = std::max(mShown, packet.pts - firstPts + packet.duration);
    mDecoded = packet.dts - mFirstDts + packet.duration;
    return stored;
}

std::int64_t WrittenTrack::duration() const {
    return std::min(mShown, mDecoded);
}

std::uint64_t WrittenTrack::chain(std::uint64_t before, std::int64_t sinceFirstDts,
                                  std::int64_t sinceFirstPts, std::int64_t size, bool isKey) {
    const std::array<std::uint64_t, 5> link = {before, static_cast<std::uint64_t>(sinceFirstDts),
                                               static_cast<std::uint64_t>(sinceFirstPts),
                                               static_cast<std::uint64_t>(size), isKey ? 1U : 0U};
    return hashOf(link.data(), sizeof link);
}

} // namespace zelcore

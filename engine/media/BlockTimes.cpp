#include "engine/media/BlockTimes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

namespace zelcore {

namespace {

constexpr std::array<std::uint8_t, 4> kCluster = {0x1F, 0x43, 0xB6, 0x75};
constexpr std::uint8_t kClusterTime = 0xE7;
constexpr std::size_t kLookedThrough = 1 << 16;

/// Of the first cluster; kNoTime where it is not near the file's beginning.
std::int64_t firstClusterTime(const SourceFile& file) {
    std::vector<std::uint8_t> bytes(kLookedThrough);
    bytes.resize(file.peek(0, bytes.data(), bytes.size()));
    const auto cluster = std::search(bytes.begin(), bytes.end(), kCluster.begin(), kCluster.end());
    const auto at = std::find(cluster, bytes.end(), kClusterTime);
    if (bytes.end() - at < 10) {
        return kNoTime;
    }
    const int size = at[1] & 0x7F;
    std::int64_t time = 0;
    for (int i = 0; i < std::min(size, 7); ++i) {
        time = time << 8 | at[2 + i];
    }
    return time;
}

} // namespace

BlockTimes::BlockTimes(const SourceFile& file, bool isMatroska)
    : mFile(file), mFirstCluster(isMatroska ? firstClusterTime(file) : kNoTime) {
}

void BlockTimes::restore(AVPacket& packet, const AVStream& stream) {
    const bool isKnown = packet.pts != kNoTime || packet.dts != kNoTime;
    if (mFirstCluster == kNoTime || (mIsBehindZero && isKnown) || packet.pos < 0) {
        return;
    }
    // A block begins with its track's number in one byte or more and the time since its cluster's.
    std::array<std::uint8_t, 10> block{};
    mFile.peek(static_cast<std::uint64_t>(packet.pos), block.data(), block.size());
    const auto number = static_cast<std::size_t>(std::countl_zero(block[0])) + 1;
    const auto sinceCluster =
        number > 8 ? std::int16_t{0} : static_cast<std::int16_t>(AV_RB16(block.data() + number));
    if (mFirstCluster + sinceCluster >= 0) {
        mIsBehindZero = true;
        return;
    }
    const AVCodecParameters& parameters = *stream.codecpar;
    const std::int64_t priming =
        parameters.sample_rate > 0
            ? av_rescale_q(parameters.initial_padding, av_make_q(1, parameters.sample_rate),
                           stream.time_base)
            : 0;
    packet.pts = mFirstCluster + sinceCluster - priming;
    packet.dts = parameters.video_delay > 0 ? kNoTime : packet.pts;
}

} // namespace zelcore

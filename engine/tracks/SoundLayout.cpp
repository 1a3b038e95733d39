#include "engine/tracks/SoundLayout.h"

#include "engine/support/Failure.h"

#include <array>
#include <cmath>
#include <vector>

namespace zelcore {

namespace {

constexpr std::uint64_t kSides = AV_CH_SIDE_LEFT | AV_CH_SIDE_RIGHT;
constexpr std::uint64_t kBacks = AV_CH_BACK_LEFT | AV_CH_BACK_RIGHT;

AVChannelLayout ofMask(std::uint64_t mask) {
    AVChannelLayout layout{};
    av_channel_layout_from_mask(&layout, mask);
    return layout;
}

/// Behind the listener is behind the listener: only with a pair more do sides and back differ.
std::uint64_t withoutBareSides(std::uint64_t mask) {
    return (mask & kBacks) == 0 && (mask & kSides) != 0 ? (mask & ~kSides) | kBacks : mask;
}

/// Sound whose channels nobody can place is heard from both sides, all of it alike.
void mixEvenly(SwrContext& resampler, int from, int to) {
    const auto count = static_cast<std::size_t>(from);
    const std::vector<double> matrix(count * static_cast<std::size_t>(to), 1 / std::sqrt(from));
    require(swr_set_matrix(&resampler, matrix.data(), from), "channel mix");
}

} // namespace

AVChannelLayout knownLayout(const AVChannelLayout& from) {
    static constexpr std::array<std::uint64_t, 9> kUsual = {
        0,
        AV_CH_LAYOUT_MONO,
        AV_CH_LAYOUT_STEREO,
        AV_CH_LAYOUT_SURROUND,
        AV_CH_LAYOUT_QUAD,
        AV_CH_LAYOUT_5POINT0_BACK,
        AV_CH_LAYOUT_5POINT1_BACK,
        AV_CH_LAYOUT_6POINT1,
        AV_CH_LAYOUT_7POINT1,
    };
    const int count = from.nb_channels;
    if (count == 1) {
        return ofMask(AV_CH_LAYOUT_MONO);
    }
    if (from.order == AV_CHANNEL_ORDER_NATIVE) {
        return ofMask(from.u.mask == AV_CH_LAYOUT_STEREO_DOWNMIX ? AV_CH_LAYOUT_STEREO
                                                                 : from.u.mask);
    }
    if (from.order != AV_CHANNEL_ORDER_AMBISONIC && count > 0 && count < std::ssize(kUsual)) {
        return ofMask(kUsual[static_cast<std::size_t>(count)]);
    }
    AVChannelLayout unknown{};
    unknown.nb_channels = count;
    return unknown;
}

AVChannelLayout aacLayout(const AVChannelLayout& known) {
    static constexpr std::array<std::uint64_t, 7> kOfAac = {
        AV_CH_LAYOUT_MONO,    AV_CH_LAYOUT_STEREO,       AV_CH_LAYOUT_SURROUND,
        AV_CH_LAYOUT_4POINT0, AV_CH_LAYOUT_5POINT0_BACK, AV_CH_LAYOUT_5POINT1_BACK,
        AV_CH_LAYOUT_7POINT1,
    };
    if (known.order != AV_CHANNEL_ORDER_NATIVE) {
        return ofMask(AV_CH_LAYOUT_STEREO);
    }
    const std::uint64_t all = withoutBareSides(known.u.mask);
    for (const std::uint64_t wanted :
         std::array<std::uint64_t, 2>{all, all & AV_CH_LAYOUT_7POINT1}) {
        for (const std::uint64_t mask : kOfAac) {
            if ((wanted & ~mask) == 0) {
                return ofMask(mask);
            }
        }
    }
    return ofMask(AV_CH_LAYOUT_STEREO);
}

ResamplerPtr openResampler(const AVFrame& from, const AVCodecContext& to) {
    AVChannelLayout layout = knownLayout(from.ch_layout);
    // This FFmpeg's function takes both layouts without const and only reads them.
    auto* wanted = const_cast<AVChannelLayout*>(&to.ch_layout);
    SwrContext* created = nullptr;
    int result =
        swr_alloc_set_opts2(&created, wanted, to.sample_fmt, to.sample_rate, &layout,
                            static_cast<AVSampleFormat>(from.format), from.sample_rate, 0, nullptr);
    ResamplerPtr resampler(created);
    if (result >= 0 && layout.order != AV_CHANNEL_ORDER_NATIVE) {
        mixEvenly(*resampler, layout.nb_channels, to.ch_layout.nb_channels);
    }
    result = result < 0 ? result : swr_init(resampler.get());
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (result < 0) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Sound of this kind cannot be converted: ", ffmpegErrorText(result)));
    }
    return resampler;
}

} // namespace zelcore

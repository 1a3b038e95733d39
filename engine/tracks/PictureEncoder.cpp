#include "engine/tracks/PictureEncoder.h"

#include "engine/support/Failure.h"
#include "engine/tracks/TrackPlan.h"

#include <algorithm>
#include <string_view>

namespace zelcore {

namespace {

// The largest picture and the longest side of the highest level of H.264.
constexpr std::int64_t kMostPixels = std::int64_t{139'264} * 256;
constexpr int kLongestSide = 16'384;
constexpr double kHighestRate = 120; // clocks are taken for rates where nothing better is known
constexpr AVRational kUsualRate{25, 1};
// Beyond any that is made: key frames come by time.
constexpr int kNoKeyFrameByCount = 600;

/// Fine enough for the times of every part, coarse enough for MP4 to hold a pause of hours.
AVRational fineClock(AVRational clock) {
    int ticks = clock.den;
    while (ticks < 10'000) {
        ticks *= 2;
    }
    return av_make_q(1, ticks > 240'000 ? 90'000 : ticks);
}

AVRational frameRate(const TrackPlan& plan) {
    for (const AVRational rate : {plan.reference->avg_frame_rate, plan.reference->r_frame_rate}) {
        if (rate.num > 0 && rate.den > 0 && av_q2d(rate) <= kHighestRate) {
            return rate;
        }
    }
    return kUsualRate;
}

// An encoder holds some twenty pictures, with more than their own size of what it found in each,
// and two for each thread. Up to 4K that is less than 1 GB.
constexpr std::int64_t kEncoderThreadBytes = 512 << 20;
constexpr std::int64_t kMostPixelsUnbounded = 4096 * 2304;

void boundMemory(AVCodecContext& codec) {
    const std::int64_t pixels = PictureSize{codec.width, codec.height}.area();
    const std::int64_t most = std::clamp<std::int64_t>(kEncoderThreadBytes / (pixels * 6), 1, 16);
    // By itself it takes half as many again as there are processors.
    codec.thread_count = static_cast<int>(std::min<std::int64_t>(av_cpu_count() * 3 / 2, most));
    if (pixels <= kMostPixelsUnbounded) {
        return;
    }
    // Few pictures at a time: each is divided among the threads, none waits for later ones.
    codec.thread_type = FF_THREAD_SLICE;
    codec.max_b_frames = 0;
    av_opt_set(codec.priv_data, "rc-lookahead", "2", 0);
    av_opt_set(codec.priv_data, "x264-params", "sync-lookahead=0", 0);
}

struct QualityChoice {
    const char* constant; ///< libx264's scale
    double share;         ///< of the usual rate, for encoders that are given one
};

QualityChoice choiceFor(PictureQuality quality) {
    switch (quality) {
        case PictureQuality::Small:
            return {"27", 0.5};
        case PictureQuality::High:
            return {"18", 2};
        case PictureQuality::Normal:
            break;
    }
    return {"21", 1};
}

void setQuality(AVCodecContext& codec, PictureQuality quality) {
    const QualityChoice choice = choiceFor(quality);
    if (av_opt_set(codec.priv_data, "crf", choice.constant, 0) >= 0) {
        av_opt_set(codec.priv_data, "preset", "veryfast", 0);
        return;
    }
    // Encoders without constant quality: a tenth of a bit per pixel suits speech and slides.
    const double rate = av_q2d(codec.framerate) * codec.width * codec.height / 10 * choice.share;
    codec.bit_rate = std::clamp(static_cast<std::int64_t>(rate), std::int64_t{300'000},
                                std::int64_t{20'000'000});
}

} // namespace

const AVCodec& bestPictureEncoder() {
    // By quality at the same size; which of them exist is decided where FFmpeg is built.
    for (const char* name : {"libx264", "libopenh264", "h264_mf", "mpeg4"}) {
        if (const AVCodec* codec = avcodec_find_encoder_by_name(name)) {
            return *codec;
        }
    }
    throw Failure(ErrorCode::UnsupportedCodec, "No encoder for video is present");
}

bool keepsFormat(const AVCodec& encoder) {
    return std::string_view(encoder.name) == "libx264";
}

CodecPtr pictureEncoder(const AVCodec& encoder, const Canvas& canvas, const TrackPlan& plan) {
    if (canvas.width <= 0 || canvas.height <= 0) {
        throw Failure(ErrorCode::SourceDamaged, "A video stream does not say how large it is");
    }
    if (std::max(canvas.width, canvas.height) > kLongestSide ||
        PictureSize{canvas.width, canvas.height}.area() > kMostPixels) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Pictures of ", canvas.width, "x", canvas.height,
                           " are larger than H.264 can be"));
    }
    auto codec = owned<CodecPtr>(avcodec_alloc_context3(&encoder));
    codec->width = canvas.width;
    codec->height = canvas.height;
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->sample_aspect_ratio = canvas.pixelAspect;
    codec->color_range = canvas.range;
    codec->color_primaries = canvas.primaries;
    codec->color_trc = canvas.transfer;
    codec->colorspace = canvas.space;
    codec->chroma_sample_location = canvas.chromaLocation;
    codec->field_order = canvas.fieldOrder;
    codec->flags |= canvas.isInterlaced ? AV_CODEC_FLAG_INTERLACED_DCT : 0;
    codec->framerate = frameRate(plan);
    codec->time_base = fineClock(plan.reference->time_base);
    if (codec->time_base.den > 65535 && encoder.id == AV_CODEC_ID_MPEG4) {
        codec->time_base = av_make_q(1, 60'000); // MPEG-4 has 16 bits for it
    }
    codec->gop_size = kNoKeyFrameByCount;
    setQuality(*codec, plan.quality);
    boundMemory(*codec);
    return codec;
}

} // namespace zelcore

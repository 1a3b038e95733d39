#include "engine/core/VideoTranscoder.h"

#include "engine/core/Trace.h"

#include <algorithm>

namespace zelcore {

namespace {

const AVCodec* bestEncoder() {
    // By quality at the same size; which of them exist is decided where FFmpeg is built.
    for (const char* name : {"libx264", "libopenh264", "h264_mf", "mpeg4"}) {
        if (const AVCodec* codec = avcodec_find_encoder_by_name(name)) {
            return codec;
        }
    }
    throw Failure(ErrorCode::UnsupportedCodec, "No encoder for video is present");
}

AVRational frameRate(const TrackPlan& plan) {
    const AVRational average = plan.reference->avg_frame_rate;
    if (average.num > 0 && average.den > 0) {
        return average;
    }
    const AVRational base = plan.reference->r_frame_rate;
    return base.num > 0 && base.den > 0 && av_q2d(base) <= 120 ? base : av_make_q(25, 1);
}

void setQuality(AVCodecContext& codec) {
    if (av_opt_set(codec.priv_data, "crf", "21", 0) >= 0) {
        av_opt_set(codec.priv_data, "preset", "veryfast", 0);
        return;
    }
    // Encoders without constant quality: a tenth of a bit per pixel suits speech and slides.
    const double rate = av_q2d(codec.framerate) * codec.width * codec.height / 10;
    codec.bit_rate = std::clamp(static_cast<std::int64_t>(rate), std::int64_t{300'000},
                                std::int64_t{20'000'000});
}

CodecPtr configuredEncoder(const TrackPlan& plan) {
    const AVCodec* codec = bestEncoder();
    const AVCodecParameters& from = *plan.reference->codecpar;
    if (from.width <= 0 || from.height <= 0) {
        throw Failure(ErrorCode::SourceDamaged, "A video stream does not say how large it is");
    }
    auto encoder = owned<CodecPtr>(avcodec_alloc_context3(codec));
    encoder->width = (from.width + 1) / 2 * 2;
    encoder->height = (from.height + 1) / 2 * 2;
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->sample_aspect_ratio = plan.reference->sample_aspect_ratio.num > 0
                                       ? plan.reference->sample_aspect_ratio
                                       : from.sample_aspect_ratio;
    encoder->color_range = from.color_range;
    encoder->color_primaries = from.color_primaries;
    encoder->color_trc = from.color_trc;
    encoder->colorspace =
        from.color_space == AVCOL_SPC_RGB ? AVCOL_SPC_UNSPECIFIED : from.color_space;
    encoder->framerate = frameRate(plan);
    encoder->time_base = plan.reference->time_base;
    if (encoder->time_base.den > 65535 && codec->id == AV_CODEC_ID_MPEG4) {
        encoder->time_base = av_make_q(1, 60'000); // MPEG-4 has 16 bits for it
    }
    encoder->thread_count = 0; // as many as there are processors
    setQuality(*encoder);
    trace(TraceLevel::Info, text("Video is encoded by ", codec->name, ", ", encoder->width, "x",
                                 encoder->height, ": ", plan.reason));
    return encoder;
}

} // namespace

VideoTranscoder::VideoTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses)
    : mLosses(losses),
      mEncoder(configuredEncoder(plan), muxer),
      mFitter(mEncoder.codec().width, mEncoder.codec().height) {
    AVStream& stream = mEncoder.addTrack();
    stream.avg_frame_rate = mEncoder.codec().framerate;
    stream.sample_aspect_ratio = mEncoder.codec().sample_aspect_ratio;
    copyTrackProperties(*plan.reference, stream);
}

void VideoTranscoder::beginPart(const AVStream& stream, Ticks offset) {
    mDecoder.emplace(stream);
    mTimeBase = stream.time_base;
    mOffset = offset;
}

void VideoTranscoder::accept(AVPacket& packet) {
    mDecoder->decode(&packet, [this](AVFrame& picture) { encode(picture); });
}

void VideoTranscoder::endPart() {
    mDecoder->decode(nullptr, [this](AVFrame& picture) { encode(picture); });
    mDecoder->throwIfNothingDecoded();
    mDecoder.reset();
}

void VideoTranscoder::finish() {
    mEncoder.drain();
}

void VideoTranscoder::encode(AVFrame& picture) {
    const AVRational base = mEncoder.codec().time_base;
    std::int64_t time = picture.best_effort_timestamp;
    if (time == kNoTime) {
        time = mLastTime == kNoTime ? 0 : mLastTime + 1;
    } else {
        time = av_rescale_q(addTimes(toTicks(time, mTimeBase), mOffset), kTicks, base);
    }
    if (mLastTime != kNoTime && time <= mLastTime) {
        trace(TraceLevel::Debug, "A picture that is not later than the one before is left out");
        return;
    }
    mLastTime = time;
    AVFrame& fitted = mFitter.fit(picture);
    fitted.pts = time;
    fitted.pict_type = AV_PICTURE_TYPE_NONE; // the encoder decides which are key frames
    const std::int64_t duration = picture.pkt_duration > 0
                                      ? av_rescale_q(picture.pkt_duration, mTimeBase, base)
                                      : av_rescale_q(1, av_inv_q(mEncoder.codec().framerate), base);
    mEncoder.encode(fitted, std::max<std::int64_t>(duration, 1));
}

} // namespace zelcore

#include "engine/tracks/VideoTranscoder.h"

#include "engine/support/Trace.h"
#include "engine/tracks/PictureEncoder.h"
#include "engine/tracks/PictureSurvey.h"

#include <algorithm>

namespace zelcore {

namespace {

// Players jump to key frames, so none may be far, however few pictures there are.
constexpr int kKeyFrameSeconds = 5;

} // namespace

VideoTranscoder::VideoTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses)
    : mLosses(losses),
      mCanvas(canvasFor(plan, keepsFormat(bestPictureEncoder()))),
      mIsSurveyed(plan.isSurveyed),
      mEncoder(pictureEncoder(bestPictureEncoder(), mCanvas, plan), muxer),
      mFitter(mCanvas) {
    trace(TraceLevel::Info, text("Video is encoded by ", mEncoder.codec().codec->name, ", ",
                                 mCanvas.width, "x", mCanvas.height, ": ", plan.reason));
    AVStream& stream = mEncoder.addTrack();
    stream.avg_frame_rate = mEncoder.codec().framerate;
    stream.sample_aspect_ratio = mCanvas.pixelAspect;
    copyTrackProperties(*plan.reference, stream, mCanvas.isTurned);
}

void VideoTranscoder::beginPart(const AVStream& stream) {
    mDecoder.emplace(stream, mLosses);
    mFitter.beginPart(stream);
    mStream = &stream;
}

void VideoTranscoder::accept(AVPacket& packet) {
    mDecoder->decode(&packet, [this](AVFrame& picture) { encode(picture); });
}

void VideoTranscoder::endPart() {
    mDecoder->decode(nullptr, [this](AVFrame& picture) { encode(picture); });
    mDecoder->settle();
    mDecoder.reset();
}

void VideoTranscoder::finish() {
    encodeHeld(mLastTime);
    mEncoder.drain();
}

void VideoTranscoder::encode(AVFrame& picture) {
    const PictureSize size{picture.width, picture.height};
    if (!mIsSurveyed && size.area() > PictureSize{mCanvas.width, mCanvas.height}.area() &&
        picture.decode_error_flags == 0) {
        throw PictureGrew{mStream, size};
    }
    const AVRational base = mEncoder.codec().time_base;
    std::int64_t time = mLastTime == kNoTime ? 0 : addTimes(mLastTime, mLastDuration);
    if (picture.best_effort_timestamp != kNoTime) {
        time = av_rescale_q(picture.best_effort_timestamp, kTicks, base);
    }
    // Two may have the same time in the source, whose clock is coarser.
    time = mLastTime == kNoTime ? time : std::max(time, addTimes(mLastTime, 1));
    encodeHeld(time);
    mLastTime = time;
    const std::int64_t duration = picture.pkt_duration > 0
                                      ? av_rescale_q(picture.pkt_duration, kTicks, base)
                                      : av_rescale_q(1, av_inv_q(mEncoder.codec().framerate), base);
    mLastDuration = std::max<std::int64_t>(duration, 1);
    require(av_frame_ref(mHeld.get(), &mFitter.fit(picture)), "picture");
    mHeld->pts = time;
}

void VideoTranscoder::encodeHeld(std::int64_t next) {
    if (mHeld->buf[0] == nullptr) {
        return;
    }
    const std::int64_t longest =
        av_rescale_q(kKeyFrameSeconds, av_make_q(1, 1), mEncoder.codec().time_base);
    const bool isKey = mLastKey == kNoTime || next - mLastKey > longest;
    mLastKey = isKey ? mHeld->pts : mLastKey;
    mHeld->pict_type = isKey ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    mEncoder.encode(*mHeld, mLastDuration);
    av_frame_unref(mHeld.get());
}

} // namespace zelcore

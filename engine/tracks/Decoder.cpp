#include "engine/tracks/Decoder.h"

#include "engine/support/Failure.h"
#include "engine/support/Trace.h"

#include <algorithm>

namespace zelcore {

namespace {

constexpr std::int64_t kDecoderThreadBytes = 96 << 20;

/// Each thread holds a picture or two.
int threadsFor(const AVCodecParameters& parameters) {
    const std::int64_t pixels =
        std::max<std::int64_t>(static_cast<std::int64_t>(parameters.width) * parameters.height, 1);
    const auto most = std::clamp<std::int64_t>(kDecoderThreadBytes / (pixels * 3 / 2 + 1), 1, 16);
    return static_cast<int>(std::min<std::int64_t>(av_cpu_count() + 1, most));
}

} // namespace

Decoder::Decoder(const AVStream& stream, Losses& losses, Clock clock, Purpose purpose)
    : mClock(clock), mFrameRate(stream.avg_frame_rate), mLosses(losses), mFrame(makeFrame()) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("No decoder for ", avcodec_get_name(parameters.codec_id)));
    }
    mCodec = owned<CodecPtr>(avcodec_alloc_context3(codec));
    require(avcodec_parameters_to_context(mCodec.get(), &parameters), "decoder parameters");
    mCodec->pkt_timebase = clock.base;
    mCodec->thread_count = threadsFor(parameters);
    if (purpose == Purpose::Check) {
        mCodec->thread_count = 1; // so few packets at a time do not pay for threads
        mCodec->skip_loop_filter = AVDISCARD_ALL;
        mCodec->flags2 |= AV_CODEC_FLAG2_FAST;
    }
    if (const int result = avcodec_open2(mCodec.get(), codec, nullptr); result < 0) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Decoder ", codec->name, " refuses: ", ffmpegErrorText(result)));
    }
}

void Decoder::send(const AVPacket* packet) {
    if (packet != nullptr) {
        mPackets++;
        const std::int64_t time = packet->pts == kNoTime ? packet->dts : packet->pts;
        mLastTime = time == kNoTime ? mLastTime : time;
        mFirstTime = mFirstTime == kNoTime ? time : mFirstTime;
        mLastDuration = packet->duration;
    }
    // EAGAIN cannot come: every frame is taken out after each packet.
    if (const int result = avcodec_send_packet(mCodec.get(), packet); result != AVERROR_EOF) {
        noteFailure(result);
    }
}

bool Decoder::receive() {
    for (;;) {
        const int result = avcodec_receive_frame(mCodec.get(), mFrame.get());
        if (result >= 0) {
            mFrames++;
            if ((mFrame->flags & AV_FRAME_FLAG_CORRUPT) != 0 || mFrame->decode_error_flags != 0) {
                addLoss(mFrame->best_effort_timestamp, mFrame->pkt_duration);
            }
            return true;
        }
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return false;
        }
        noteFailure(result); // threaded decoders report a packet's damage here
    }
}

void Decoder::noteFailure(int result) {
    if (result >= 0) {
        return;
    }
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    trace(TraceLevel::Debug, text("A damaged packet of ", mCodec->codec->name,
                                  " is left out: ", ffmpegErrorText(result)));
    addLoss(mLastTime, mLastDuration);
}

void Decoder::addLoss(std::int64_t time, std::int64_t duration) {
    mHasFoundDamage = true;
    Loss loss;
    loss.kind = mCodec->codec_type;
    loss.begin =
        time == kNoTime ? mClock.offset : addTimes(toTicks(time, mClock.base), mClock.offset);
    loss.pieces = 1;
    if (duration <= 0 && mFrameRate.num > 0 && loss.kind == AVMEDIA_TYPE_VIDEO) {
        loss.duration = toTicks(1, av_inv_q(mFrameRate));
    } else {
        loss.duration = toTicks(std::max<std::int64_t>(duration, 0), mClock.base);
    }
    if (loss.kind == AVMEDIA_TYPE_AUDIO) {
        loss.pieces = av_rescale_q(loss.duration, kTicks, av_make_q(1, mCodec->sample_rate));
    }
    mLosses.add(loss);
}

void Decoder::settle() {
    if (hasDecodedNothing() && !mHasFoundDamage) {
        addLoss(mFirstTime, addTimes(mLastTime, mLastDuration) - mFirstTime);
    }
}

} // namespace zelcore

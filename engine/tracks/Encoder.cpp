#include "engine/tracks/Encoder.h"

#include "engine/support/Failure.h"

namespace zelcore {

Encoder::Encoder(CodecPtr codec, Muxer& muxer)
    : mCodec(std::move(codec)), mMuxer(muxer), mPacket(makePacket()) {
    mCodec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER; // MP4 keeps the headers in its index
    const AVCodec& kind = *mCodec->codec;         // a refusal takes it away from the context
    const int result = avcodec_open2(mCodec.get(), nullptr, nullptr);
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (result < 0) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Encoder ", kind.name, " refuses: ", ffmpegErrorText(result)));
    }
}

AVStream& Encoder::addTrack() {
    const auto parameters = owned<ParametersPtr>(avcodec_parameters_alloc());
    require(avcodec_parameters_from_context(parameters.get(), mCodec.get()), "encoder parameters");
    mTrack = mMuxer.written().size();
    AVStream& track = mMuxer.addTrack(*parameters, mCodec->time_base);
    mMuxer.setTranscoded(mTrack);
    return track;
}

void Encoder::encode(const AVFrame& frame, std::int64_t duration) {
    mDurations[frame.pts] = duration;
    require(avcodec_send_frame(mCodec.get(), &frame), "encoder");
    writePackets();
}

void Encoder::drain() {
    require(avcodec_send_frame(mCodec.get(), nullptr), "encoder");
    writePackets();
}

void Encoder::writePackets() {
    for (;;) {
        const int result = avcodec_receive_packet(mCodec.get(), mPacket.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return;
        }
        require(result, "encoder");
        const std::int64_t duration = takeDuration(mPacket->pts);
        if (mPacket->duration == 0) {
            mPacket->duration = duration;
        }
        mMuxer.write(mTrack, *mPacket, mCodec->time_base);
    }
}

std::int64_t Encoder::takeDuration(std::int64_t time) {
    // Frames come out in another order than they went in, and sound a little earlier.
    const auto found = mDurations.lower_bound(time);
    if (found == mDurations.end()) {
        return 0;
    }
    const std::int64_t duration = found->second;
    mDurations.erase(found);
    return duration;
}

} // namespace zelcore

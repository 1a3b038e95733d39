#include "engine/core/Encoder.h"

#include "engine/core/Failure.h"

namespace zelcore {

Encoder::Encoder(CodecPtr codec, Muxer& muxer)
    : mCodec(std::move(codec)), mMuxer(muxer), mPacket(makePacket()) {
    mCodec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER; // MP4 keeps the headers in its index
    if (const int result = avcodec_open2(mCodec.get(), nullptr, nullptr); result < 0) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Encoder ", mCodec->codec->name, " refuses: ", ffmpegErrorText(result)));
    }
}

AVStream& Encoder::addTrack() {
    const auto parameters = owned<ParametersPtr>(avcodec_parameters_alloc());
    require(avcodec_parameters_from_context(parameters.get(), mCodec.get()), "encoder parameters");
    mTrack = mMuxer.written().size();
    return mMuxer.addTrack(*parameters, mCodec->time_base);
}

void Encoder::encode(const AVFrame* frame) {
    require(avcodec_send_frame(mCodec.get(), frame), "encoder");
    for (;;) {
        const int result = avcodec_receive_packet(mCodec.get(), mPacket.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return;
        }
        require(result, "encoder");
        if (mPacket->duration == 0) {
            mPacket->duration = mFrameDuration;
        }
        mMuxer.write(mTrack, *mPacket, mCodec->time_base);
    }
}

} // namespace zelcore

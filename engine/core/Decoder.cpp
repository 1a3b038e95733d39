#include "engine/core/Decoder.h"

#include "engine/core/Failure.h"
#include "engine/core/Trace.h"

namespace zelcore {

Decoder::Decoder(const AVStream& stream) : mFrame(makeFrame()) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("No decoder for ", avcodec_get_name(parameters.codec_id)));
    }
    mCodec = owned<CodecPtr>(avcodec_alloc_context3(codec));
    require(avcodec_parameters_to_context(mCodec.get(), &parameters), "decoder parameters");
    mCodec->pkt_timebase = kTicks; // of the packets that it gets here
    mCodec->thread_count = 0;      // as many as there are processors
    if (const int result = avcodec_open2(mCodec.get(), codec, nullptr); result < 0) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Decoder ", codec->name, " refuses: ", ffmpegErrorText(result)));
    }
}

void Decoder::send(const AVPacket* packet) {
    mPackets += packet == nullptr ? 0 : 1;
    // EAGAIN cannot come: every frame is taken out after each packet.
    if (const int result = avcodec_send_packet(mCodec.get(), packet); result != AVERROR_EOF) {
        noteDamage(result);
    }
}

bool Decoder::receive() {
    for (;;) {
        const int result = avcodec_receive_frame(mCodec.get(), mFrame.get());
        if (result >= 0) {
            mFrames++;
            return true;
        }
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return false;
        }
        noteDamage(result); // threaded decoders report a packet's damage here
    }
}

void Decoder::noteDamage(int result) {
    if (result >= 0) {
        return;
    }
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    trace(TraceLevel::Warning, text("A damaged packet of ", mCodec->codec->name,
                                    " is left out: ", ffmpegErrorText(result)));
}

void Decoder::throwIfNothingDecoded() const {
    if (mPackets > 0 && mFrames == 0) {
        throw Failure(ErrorCode::SourceDamaged, text("None of ", mPackets, " packets of ",
                                                     mCodec->codec->name, " could be decoded"));
    }
}

} // namespace zelcore

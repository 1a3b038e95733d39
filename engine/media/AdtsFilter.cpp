#include "engine/media/AdtsFilter.h"

#include "engine/support/Failure.h"

namespace zelcore {

void AdtsFilter::apply(AVPacket& packet, const AVCodecParameters& parameters, AVRational timeBase) {
    if (mState == State::Unknown) {
        const bool isNeeded = parameters.codec_id == AV_CODEC_ID_AAC && packet.size > 2 &&
                              packet.data[0] == 0xFF && (packet.data[1] & 0xF0U) == 0xF0U;
        mState = isNeeded ? State::Needed : State::Unneeded;
        if (isNeeded) {
            AVBSFContext* filter = nullptr;
            require(av_bsf_alloc(av_bsf_get_by_name("aac_adtstoasc"), &filter), "ADTS filter");
            mFilter.reset(filter);
            require(avcodec_parameters_copy(filter->par_in, &parameters), "ADTS filter");
            filter->time_base_in = timeBase;
            require(av_bsf_init(filter), "ADTS filter");
        }
    }
    if (mState == State::Unneeded) {
        return;
    }
    require(av_bsf_send_packet(mFilter.get(), &packet), "ADTS filter");
    if (const int result = av_bsf_receive_packet(mFilter.get(), &packet); result < 0) {
        throw Failure(ErrorCode::SourceDamaged,
                      text("A packet of AAC is damaged: ", ffmpegErrorText(result)));
    }
}

} // namespace zelcore

#include "engine/verify/DecodingCheck.h"

#include "engine/support/Failure.h"
#include "engine/verify/IndexCheck.h"

#include <span>

namespace zelcore {

namespace {

constexpr int kPlaces = 3;

/// One track of the finished file, looked at by a decoder.
class Glance {
public:
    Glance(AVFormatContext& demuxer, int stream, const WrittenTrack& track)
        : mDemuxer(demuxer), mStream(stream), mTrack(track) {
        const AVCodecParameters& parameters = *mDemuxer.streams[mStream]->codecpar;
        const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
        mCodec = owned<CodecPtr>(avcodec_alloc_context3(codec));
        mCodec->thread_count = 1;
        mCodec->err_recognition |= AV_EF_EXPLODE;
        require(avcodec_parameters_to_context(mCodec.get(), &parameters), "decoder");
        require(avcodec_open2(mCodec.get(), codec, nullptr), "decoder");
    }

    void at(std::int64_t time, const StopFlag& stop) {
        avcodec_flush_buffers(mCodec.get());
        int result = av_seek_frame(&mDemuxer, mStream, time, AVSEEK_FLAG_BACKWARD);
        const PacketPtr packet = makePacket();
        const FramePtr frame = makeFrame();
        bool isAtEnd = false;
        while (result >= 0 && !isAtEnd) {
            stop.throwIfRaised();
            isAtEnd = av_read_frame(&mDemuxer, packet.get()) < 0;
            if (!isAtEnd && packet->stream_index != mStream) {
                av_packet_unref(packet.get());
                continue;
            }
            result = avcodec_send_packet(mCodec.get(), isAtEnd ? nullptr : packet.get());
            av_packet_unref(packet.get());
            if (result >= 0 && avcodec_receive_frame(mCodec.get(), frame.get()) >= 0) {
                expectShape(*frame, time);
                return;
            }
        }
        refuse(time);
    }

private:
    void expectShape(const AVFrame& frame, std::int64_t time) const {
        const bool isPicture = mTrack.type == AVMEDIA_TYPE_VIDEO;
        if (isPicture ? frame.width != mTrack.width || frame.height != mTrack.height
                      : frame.nb_samples == 0 || frame.ch_layout.nb_channels != mTrack.channels) {
            refuse(time);
        }
    }
    [[noreturn]] void refuse(std::int64_t time) const {
        const double seconds =
            static_cast<double>(time) * av_q2d(mDemuxer.streams[mStream]->time_base);
        throw Failure(ErrorCode::VerificationFailed,
                      text("Track ", mStream, " of the finished file ", "does not decode at ",
                           seconds, " s"));
    }

    AVFormatContext& mDemuxer;
    const int mStream;
    const WrittenTrack& mTrack;
    CodecPtr mCodec;
};

} // namespace

void decodeHereAndThere(const OsFile& file, std::uint64_t size,
                        const std::vector<WrittenTrack>& written, const StopFlag& stop) {
    FileInput input(file, size, stop);
    DemuxerPtr demuxer;
    int stream = 0;
    for (const WrittenTrack& track : written) {
        if (track.packets == 0) {
            continue;
        }
        if (track.isTranscoded) {
            demuxer = demuxer == nullptr ? openFinished(input) : std::move(demuxer);
            Glance glance(*demuxer, stream, track);
            for (int place = 0; place < kPlaces; ++place) {
                glance.at(track.firstPts + track.duration() * place / (kPlaces - 1), stop);
            }
        }
        ++stream;
    }
}

} // namespace zelcore

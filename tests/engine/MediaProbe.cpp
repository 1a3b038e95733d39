#include "engine/MediaProbe.h"

#include "engine/core/AvHandles.h"

#include <algorithm>

extern "C" {
#include <libavutil/adler32.h>
}

namespace zelcore::testing {

std::vector<ProbedTrack> probe(const std::string& path) {
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0) {
        return {};
    }
    const DemuxerPtr format(opened);
    avformat_find_stream_info(format.get(), nullptr);
    std::vector<ProbedTrack> tracks;
    std::vector<CodecPtr> decoders;
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        const AVCodecParameters& parameters = *format->streams[i]->codecpar;
        tracks.push_back({.codec = avcodec_get_name(parameters.codec_id),
                          .width = parameters.width,
                          .height = parameters.height,
                          .channels = parameters.ch_layout.nb_channels});
        const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
        decoders.push_back(owned<CodecPtr>(avcodec_alloc_context3(codec)));
        avcodec_parameters_to_context(decoders.back().get(), &parameters);
        decoders.back()->pkt_timebase = format->streams[i]->time_base;
        avcodec_open2(decoders.back().get(), codec, nullptr);
    }
    const PacketPtr packet = makePacket();
    const FramePtr frame = makeFrame();
    const auto decode = [&](std::size_t index, const AVPacket* coded) {
        ProbedTrack& track = tracks[index];
        track.damaged += avcodec_send_packet(decoders[index].get(), coded) < 0 ? 1 : 0;
        while (avcodec_receive_frame(decoders[index].get(), frame.get()) >= 0) {
            track.decoded += track.isVideo() ? 1 : static_cast<std::size_t>(frame->nb_samples);
        }
    };
    while (av_read_frame(format.get(), packet.get()) >= 0) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        ProbedTrack& track = tracks[index];
        const double tick = av_q2d(format->streams[index]->time_base);
        track.times.push_back(static_cast<double>(packet->pts) * tick);
        track.end = std::max(track.end, static_cast<double>(packet->pts + packet->duration) * tick);
        track.packets.push_back(
            av_adler32_update(1, packet->data, static_cast<std::size_t>(packet->size)));
        decode(index, packet.get());
        av_packet_unref(packet.get());
    }
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        decode(i, nullptr);
    }
    return tracks;
}

} // namespace zelcore::testing

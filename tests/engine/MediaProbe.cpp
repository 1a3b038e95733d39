#include "engine/MediaProbe.h"

#include "engine/core/AvHandles.h"

#include <algorithm>
#include <span>

extern "C" {
#include <libavutil/adler32.h>
}

namespace zelcore::testing {

namespace {

DemuxerPtr open(const std::string& path) {
    AVFormatContext* format = nullptr;
    avformat_open_input(&format, path.c_str(), nullptr, nullptr);
    return DemuxerPtr(format);
}

std::span<AVStream* const> streamsOf(const AVFormatContext& format) {
    return {format.streams, format.nb_streams};
}

void countDecoded(AVCodecContext& decoder, const AVPacket* packet, AVFrame& frame,
                  ProbedTrack& track) {
    track.damaged += avcodec_send_packet(&decoder, packet) < 0 ? 1 : 0;
    while (avcodec_receive_frame(&decoder, &frame) >= 0) {
        track.decoded += track.isVideo ? 1 : static_cast<std::size_t>(frame.nb_samples);
    }
}

CodecPtr openDecoder(const AVStream& stream) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    auto decoder = owned<CodecPtr>(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), stream.codecpar);
    decoder->pkt_timebase = stream.time_base;
    avcodec_open2(decoder.get(), codec, nullptr);
    return decoder;
}

} // namespace

std::vector<ProbedTrack> probe(const std::string& path) {
    std::vector<ProbedTrack> tracks;
    const DemuxerPtr format = open(path);
    if (format == nullptr) {
        return tracks;
    }
    avformat_find_stream_info(format.get(), nullptr);
    std::vector<CodecPtr> decoders;
    for (const AVStream* stream : streamsOf(*format)) {
        const AVCodecParameters& parameters = *stream->codecpar;
        tracks.push_back({.isVideo = parameters.codec_type == AVMEDIA_TYPE_VIDEO,
                          .codec = avcodec_get_name(parameters.codec_id),
                          .width = parameters.width,
                          .height = parameters.height,
                          .sampleRate = parameters.sample_rate,
                          .channels = parameters.ch_layout.nb_channels});
        decoders.push_back(openDecoder(*stream));
    }
    const PacketPtr packet = makePacket();
    const FramePtr frame = makeFrame();
    while (av_read_frame(format.get(), packet.get()) >= 0) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        ProbedTrack& track = tracks[index];
        const double tick = av_q2d(format->streams[index]->time_base);
        track.times.push_back(static_cast<double>(packet->pts) * tick);
        track.end = std::max(track.end, static_cast<double>(packet->pts + packet->duration) * tick);
        track.packets.push_back(
            av_adler32_update(1, packet->data, static_cast<std::size_t>(packet->size)));
        countDecoded(*decoders[index], packet.get(), *frame, track);
        av_packet_unref(packet.get());
    }
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        countDecoded(*decoders[i], nullptr, *frame, tracks[i]);
    }
    return tracks;
}

bool canDecode(const std::string& path) {
    const DemuxerPtr format = open(path);
    return format != nullptr && std::ranges::all_of(streamsOf(*format), [](const auto* stream) {
               return avcodec_find_decoder(stream->codecpar->codec_id) != nullptr;
           });
}

} // namespace zelcore::testing

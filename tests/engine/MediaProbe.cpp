#include "engine/MediaProbe.h"

#include <algorithm>
#include <memory>
#include <span>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/adler32.h>
}

namespace zelcore::testing {

namespace {

void countDecoded(AVCodecContext& decoder, const AVPacket* packet, AVFrame& frame,
                  ProbedTrack& track) {
    track.damaged += avcodec_send_packet(&decoder, packet) < 0 ? 1 : 0;
    while (avcodec_receive_frame(&decoder, &frame) >= 0) {
        track.decoded += track.isVideo ? 1 : static_cast<std::size_t>(frame.nb_samples);
    }
}

AVCodecContext* openDecoder(const AVStream& stream) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    AVCodecContext* decoder = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(decoder, stream.codecpar);
    decoder->pkt_timebase = stream.time_base;
    avcodec_open2(decoder, codec, nullptr);
    return decoder;
}

ProbedTrack describe(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    ProbedTrack track;
    track.isVideo = parameters.codec_type == AVMEDIA_TYPE_VIDEO;
    track.codec = avcodec_get_name(parameters.codec_id);
    track.width = parameters.width;
    track.height = parameters.height;
    track.sampleRate = parameters.sample_rate;
    track.channels = parameters.ch_layout.nb_channels;
    return track;
}

} // namespace

std::vector<ProbedTrack> probe(const std::string& path) {
    std::vector<ProbedTrack> tracks;
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) {
        return tracks;
    }
    avformat_find_stream_info(format, nullptr);
    std::vector<AVCodecContext*> decoders;
    for (const AVStream* stream : std::span(format->streams, format->nb_streams)) {
        tracks.push_back(describe(*stream));
        decoders.push_back(openDecoder(*stream));
    }
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    while (av_read_frame(format, packet) >= 0) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        ProbedTrack& track = tracks[index];
        const double tick = av_q2d(format->streams[index]->time_base);
        track.times.push_back(static_cast<double>(packet->pts) * tick);
        track.end = std::max(track.end, static_cast<double>(packet->pts + packet->duration) * tick);
        track.packets.push_back(
            av_adler32_update(1, packet->data, static_cast<std::size_t>(packet->size)));
        countDecoded(*decoders[index], packet, *frame, track);
        av_packet_unref(packet);
    }
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        countDecoded(*decoders[i], nullptr, *frame, tracks[i]);
        avcodec_free_context(&decoders[i]);
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avformat_close_input(&format);
    return tracks;
}

bool canDecode(const std::string& path) {
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) {
        return false;
    }
    const bool result = std::ranges::all_of(
        std::span(format->streams, format->nb_streams), [](const AVStream* stream) {
            return avcodec_find_decoder(stream->codecpar->codec_id) != nullptr;
        });
    avformat_close_input(&format);
    return result;
}

} // namespace zelcore::testing

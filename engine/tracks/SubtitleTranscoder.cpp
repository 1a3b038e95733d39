#include "engine/tracks/SubtitleTranscoder.h"

#include "engine/support/Trace.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace zelcore {

namespace {

constexpr AVRational kTextClock{1, 1000};
constexpr Ticks kLongestOpen = 5 * Ticks{kTicks.den};
/// A piece of timed text says its length in 16 bits; its styles come besides.
constexpr int kLargestPiece = 128 * 1024;
constexpr Ticks kLongestShown = 24 * 3600 * Ticks{kTicks.den};

CodecPtr openDecoder(const AVStream& stream) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    auto decoder = owned<CodecPtr>(avcodec_alloc_context3(codec));
    require(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "subtitles");
    decoder->pkt_timebase = kTicks;
    const int result = avcodec_open2(decoder.get(), codec, nullptr);
    return result < 0 ? CodecPtr() : std::move(decoder);
}

/// White letters, for text whose own styles are missing.
constexpr std::string_view kPlainStyles =
    "[Script Info]\nScriptType: v4.00+\n\n[V4+ Styles]\n"
    "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, "
    "Bold, Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, "
    "Shadow, Alignment, MarginL, MarginR, MarginV, Encoding\n"
    "Style: Default,Arial,16,&Hffffff,&Hffffff,&H0,&H0,0,0,0,0,100,100,0,0,1,1,0,2,10,10,10,0\n\n"
    "[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n";

/// Null when it refuses.
CodecPtr openEncoder(std::string_view header) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MOV_TEXT);
    auto encoder = owned<CodecPtr>(avcodec_alloc_context3(codec));
    encoder->time_base = kTextClock;
    encoder->subtitle_header = static_cast<std::uint8_t*>(av_mallocz(header.size() + 1));
    if (encoder->subtitle_header == nullptr) {
        throw std::bad_alloc();
    }
    std::ranges::copy(header, encoder->subtitle_header);
    encoder->subtitle_header_size = static_cast<int>(header.size());
    const int result = avcodec_open2(encoder.get(), codec, nullptr);
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    return result < 0 ? CodecPtr() : std::move(encoder);
}

std::string_view headerOf(const AVCodecContext& decoder) {
    return {reinterpret_cast<const char*>(decoder.subtitle_header),
            static_cast<std::size_t>(decoder.subtitle_header_size)};
}

/// The text of an event comes behind eight commas.
std::string textOf(const std::string& event) {
    std::size_t at = 0;
    for (int comma = 0; comma < 8 && at != std::string::npos; ++comma) {
        at = event.find(',', at);
        at = at == std::string::npos ? at : at + 1;
    }
    return at == std::string::npos ? std::string() : event.substr(at);
}

struct SubtitleFree {
    void operator()(AVSubtitle* subtitle) const { avsubtitle_free(subtitle); }
};

} // namespace

SubtitleTranscoder::SubtitleTranscoder(const TrackPlan& plan, Muxer& muxer, Losses& losses)
    : mMuxer(muxer),
      mLosses(losses),
      mTrack(muxer.written().size()),
      mDecoder(openDecoder(*plan.reference)) {
    if (mDecoder != nullptr && mDecoder->subtitle_header_size > 0) {
        mEncoder = openEncoder(headerOf(*mDecoder));
    }
    if (mEncoder == nullptr) {
        trace(TraceLevel::Warning, "The styles of a subtitle track are missing or damaged");
        mEncoder = openEncoder(kPlainStyles);
    }
    if (mEncoder == nullptr) {
        throw Failure(ErrorCode::UnsupportedCodec, "Subtitles cannot be encoded");
    }
    const auto parameters = owned<ParametersPtr>(avcodec_parameters_alloc());
    require(avcodec_parameters_from_context(parameters.get(), mEncoder.get()), "subtitles");
    copyTrackProperties(*plan.reference, mMuxer.addTrack(*parameters, kTextClock));
}

void SubtitleTranscoder::beginPart(const AVStream& stream) {
    mDecoder = openDecoder(stream);
}

void SubtitleTranscoder::accept(AVPacket& packet) {
    const Ticks time = packet.pts == kNoTime ? packet.dts : packet.pts;
    AVSubtitle subtitle{};
    int isWhole = 0;
    const int result = mDecoder == nullptr || time == kNoTime
                           ? AVERROR_INVALIDDATA
                           : avcodec_decode_subtitle2(mDecoder.get(), &subtitle, &isWhole, &packet);
    const std::unique_ptr<AVSubtitle, SubtitleFree> owner(&subtitle);
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (result < 0 || (packet.flags & AV_PKT_FLAG_CORRUPT) != 0) {
        addLoss(time == kNoTime ? mReached : time, packet.duration);
    }
    if (result < 0 || isWhole == 0) {
        return;
    }
    const Ticks begin = std::max(time, mReached);
    for (Line& each : mShown) {
        each.end = each.isOpen ? std::min(each.end, begin) : each.end;
    }
    advance(begin);
    for (unsigned i = 0; i < subtitle.num_rects; ++i) {
        const bool isOpen = packet.duration <= 0;
        const Ticks lasts = isOpen ? kLongestOpen : std::min(packet.duration, kLongestShown);
        if (const Ticks end = addTimes(time, lasts);
            end > begin && subtitle.rects[i]->ass != nullptr) {
            mShown.push_back({end, isOpen, subtitle.rects[i]->ass});
        }
    }
}

void SubtitleTranscoder::finish() {
    advance(INT64_MAX);
}

void SubtitleTranscoder::advance(Ticks to) {
    while (!mShown.empty() && mReached < to) {
        const Ticks end = std::min(to, std::ranges::min(mShown, {}, &Line::end).end);
        if (end > mReached) {
            write(mReached, end);
        }
        mReached = std::max(end, mReached);
        std::erase_if(mShown, [this](const Line& each) { return each.end <= mReached; });
    }
    mReached = to == INT64_MAX ? mReached : std::max(mReached, to);
}

void SubtitleTranscoder::write(Ticks begin, Ticks end) {
    std::string event = mShown.front().text;
    for (std::size_t i = 1; i < mShown.size(); ++i) {
        event += "\\N{\\r}" + textOf(mShown[i].text); // in its own style
    }
    AVSubtitleRect rect{};
    rect.type = SUBTITLE_ASS;
    rect.ass = event.data();
    AVSubtitleRect* rects = &rect;
    AVSubtitle subtitle{};
    subtitle.num_rects = 1;
    subtitle.rects = &rects;
    std::vector<std::uint8_t> piece(kLargestPiece);
    const int size =
        avcodec_encode_subtitle(mEncoder.get(), piece.data(), kLargestPiece, &subtitle);
    if (size == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (size < 0) {
        addLoss(begin, end - begin);
        return;
    }
    if (size < 2 || AV_RB16(piece.data()) == 0) {
        return; // no text
    }
    const PacketPtr packet = makePacket();
    require(av_new_packet(packet.get(), size), "subtitles");
    std::copy_n(piece.data(), size, packet->data);
    packet->pts = packet->dts = begin;
    packet->duration = end - begin;
    packet->flags |= AV_PKT_FLAG_KEY;
    mMuxer.write(mTrack, *packet, kTicks);
}

void SubtitleTranscoder::addLoss(Ticks begin, Ticks duration) {
    trace(TraceLevel::Debug, text("A damaged subtitle at ", toSeconds(begin), " s is left out"));
    mLosses.add(
        {AVMEDIA_TYPE_SUBTITLE, LossCause::Damaged, begin, std::max<Ticks>(duration, 0), 1});
}

} // namespace zelcore

#include "engine/tracks/PictureSurvey.h"

#include "engine/support/Trace.h"
#include "engine/tracks/Decoder.h"

#include <algorithm>
#include <map>

namespace zelcore {

namespace {

void grow(PartStream& stream, PictureSize size) {
    if (size.area() > stream.largest.area()) {
        stream.largest = size;
    }
}

/// The streams of the plan that belong to this source, by their indices in it.
std::map<std::size_t, PartStream*> transcodedPictures(const Source& source,
                                                      std::vector<TrackPlan>& plans) {
    std::map<std::size_t, PartStream*> found;
    for (TrackPlan& plan : plans) {
        for (PartStream& each : plan.streams) {
            for (std::size_t index = 0; index < source.streamCount(); ++index) {
                if (!plan.isCopied && each.stream == &source.stream(index) &&
                    each.stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
                    found[index] = &each;
                }
            }
        }
    }
    return found;
}

void survey(Source& source, const std::map<std::size_t, PartStream*>& streams,
            const StopFlag& stop) {
    Losses ignored; // they are counted when the pictures are encoded
    std::map<std::size_t, Decoder> decoders;
    for (const auto& [index, stream] : streams) {
        decoders.try_emplace(index, *stream->stream, ignored);
    }
    const auto look = [&streams](std::size_t index) {
        return [stream = streams.at(index)](const AVFrame& picture) {
            grow(*stream, {picture.width, picture.height});
        };
    };
    const PacketPtr packet = makePacket();
    while (source.read(*packet)) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        const auto decoder = decoders.find(index);
        if (decoder != decoders.end() && (packet->flags & AV_PKT_FLAG_KEY) != 0) {
            decoder->second.decode(packet.get(), look(index));
        }
        av_packet_unref(packet.get());
        stop.throwIfRaised();
    }
    for (auto& [index, decoder] : decoders) {
        decoder.decode(nullptr, look(index));
    }
}

} // namespace

void surveyPictures(const Sources& sources, std::vector<TrackPlan>& plans, const PictureGrew& found,
                    const StopFlag& stop) {
    trace(TraceLevel::Info, text("A picture of ", found.size.width, "x", found.size.height,
                                 " is larger than those before: all are looked through"));
    for (TrackPlan& plan : plans) {
        plan.isSurveyed = !plan.isCopied;
        for (PartStream& each : plan.streams) {
            if (each.stream == found.stream) {
                grow(each, found.size);
            }
        }
    }
    for (const auto& source : sources) {
        const auto streams = transcodedPictures(*source, plans);
        if (!streams.empty()) {
            source->open();
            survey(*source, streams, stop);
            source->close();
        }
        stop.throwIfRaised();
    }
}

} // namespace zelcore

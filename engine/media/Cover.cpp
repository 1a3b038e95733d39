#include "engine/media/Cover.h"

#include "engine/support/Failure.h"

#include <algorithm>
#include <span>

namespace zelcore {

namespace {

bool hasPlaceInMp4(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    return isCover(stream) && stream.attached_pic.size > 0 &&
           (parameters.codec_id == AV_CODEC_ID_MJPEG || parameters.codec_id == AV_CODEC_ID_PNG ||
            parameters.codec_id == AV_CODEC_ID_BMP);
}

} // namespace

bool isCover(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

std::optional<int> Cover::takeFrom(const AVFormatContext& source) {
    const auto streams = std::span(source.streams, source.nb_streams);
    const auto found =
        std::ranges::find_if(streams, [](const AVStream* each) { return hasPlaceInMp4(*each); });
    if (found == streams.end()) {
        return std::nullopt;
    }
    mParameters = owned<ParametersPtr>(avcodec_parameters_alloc());
    require(avcodec_parameters_copy(mParameters.get(), (*found)->codecpar), "cover");
    mPicture = makePacket();
    require(av_packet_ref(mPicture.get(), &(*found)->attached_pic), "cover");
    return (*found)->index;
}

} // namespace zelcore

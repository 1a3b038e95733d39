#include "engine/tracks/Canvas.h"

#include "engine/tracks/TrackPlan.h"

#include <algorithm>
#include <array>

namespace zelcore {

namespace {

void takeShape(Canvas& canvas, const TrackPlan& plan) {
    const Orientation first = orientationOf(*plan.reference);
    canvas.isTurned = std::ranges::any_of(plan.streams, [first](const PartStream& each) {
        return orientationOf(*each.stream) != first;
    });
    PictureSize largest;
    for (const auto& [stream, seen] : plan.streams) {
        PictureSize size = seen;
        AVRational aspect = saidAspect(*stream);
        if (canvas.isTurned && orientationOf(*stream).isTransposed) {
            std::swap(size.width, size.height);
            aspect = aspect.num > 0 ? av_inv_q(aspect) : aspect;
        }
        if (size.area() > largest.area()) {
            largest = size;
            canvas.pixelAspect = aspect;
        }
    }
    canvas.width = (largest.width + 1) / 2 * 2;
    canvas.height = (largest.height + 1) / 2 * 2;
}

void takeColours(Canvas& canvas, const AVCodecParameters& from, bool keepsFormat) {
    canvas.space = from.color_space;
    canvas.primaries = from.color_primaries;
    canvas.transfer = from.color_trc;
    if (isRgb(from.format) || from.color_space == AVCOL_SPC_RGB) {
        // Computed here, so that it can be told what players otherwise guess by the size.
        canvas.space = AVCOL_SPC_BT709;
        if (canvas.primaries == AVCOL_PRI_UNSPECIFIED) {
            canvas.primaries = AVCOL_PRI_BT709;
        }
        if (canvas.transfer == AVCOL_TRC_UNSPECIFIED) {
            canvas.transfer = AVCOL_TRC_BT709;
        }
    } else if (keepsFormat) {
        canvas.range = rangeOf(from.format, from.color_range);
    }
    if (from.format == AV_PIX_FMT_YUV420P || from.format == AV_PIX_FMT_YUVJ420P) {
        canvas.chromaLocation = from.chroma_location;
    }
}

} // namespace

Canvas canvasFor(const TrackPlan& plan, bool keepsFormat) {
    const AVCodecParameters& from = *plan.reference->codecpar;
    Canvas canvas;
    takeShape(canvas, plan);
    takeColours(canvas, from, keepsFormat);
    canvas.isInterlaced =
        keepsFormat && !canvas.isTurned && from.field_order > AV_FIELD_PROGRESSIVE;
    canvas.fieldOrder = canvas.isInterlaced ? from.field_order : AV_FIELD_PROGRESSIVE;
    return canvas;
}

AVRational saidAspect(const AVStream& stream) {
    return stream.sample_aspect_ratio.num > 0 ? stream.sample_aspect_ratio
                                              : stream.codecpar->sample_aspect_ratio;
}

double pixelAspectOf(AVRational aspect) {
    return aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1;
}

bool isRgb(int pixelFormat) {
    const auto* described = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pixelFormat));
    return described != nullptr &&
           (described->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

AVColorRange rangeOf(int pixelFormat, AVColorRange said) {
    static constexpr std::array kFull = {
        AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUVJ444P, AV_PIX_FMT_YUVJ440P,
        AV_PIX_FMT_YUVJ411P, AV_PIX_FMT_GRAY8,    AV_PIX_FMT_YA8};
    const bool isFull =
        isRgb(pixelFormat) ||
        std::ranges::find(kFull, static_cast<AVPixelFormat>(pixelFormat)) != kFull.end();
    if (said == AVCOL_RANGE_UNSPECIFIED || isRgb(pixelFormat)) {
        return isFull ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    }
    return said;
}

} // namespace zelcore

#include "engine/tracks/PictureFitter.h"

#include "engine/support/Failure.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>

namespace zelcore {

namespace {

constexpr AVPixelFormat kFormat = AV_PIX_FMT_YUV420P;
constexpr double kSameAspect = 0.005; // what rounding makes of one

FramePtr pictureOf(int width, int height) {
    FramePtr picture = makeFrame();
    picture->format = kFormat;
    picture->width = width;
    picture->height = height;
    require(av_frame_get_buffer(picture.get(), 0), "picture buffer");
    return picture;
}

PicturePlanes planesOf(const AVFrame& picture, int left = 0, int top = 0) {
    PicturePlanes planes;
    std::ranges::copy(std::span(picture.data).first(4), planes.data.begin());
    std::ranges::copy(std::span(picture.linesize).first(4), planes.stride.begin());
    const auto move = [&](std::size_t plane, int x, int y) {
        planes.data[plane] += static_cast<std::ptrdiff_t>(y) * planes.stride[plane] + x;
    };
    if (left > 0 || top > 0) { // only ever in a picture of ours
        move(0, left, top);
        move(1, left / 2, top / 2);
        move(2, left / 2, top / 2);
    }
    return planes;
}

bool isPlain(int format) {
    return format == AV_PIX_FMT_YUV420P || format == AV_PIX_FMT_YUVJ420P;
}

} // namespace

void PictureFitter::beginPart(const AVStream& stream) {
    mOrientation = mCanvas.isTurned ? orientationOf(stream) : Orientation{};
    mContainersAspect = stream.sample_aspect_ratio;
    mContainersSpace = stream.codecpar->color_space;
    mContainersRange = stream.codecpar->color_range;
}

AVFrame& PictureFitter::fit(AVFrame& picture) {
    const Place place = placeOf(picture);
    const PictureKind from = kindOf(picture);
    const bool isUpright = mOrientation == Orientation{};
    if (isUpright && isPlain(picture.format) && place.isExact && picture.width == mCanvas.width &&
        picture.height == mCanvas.height && from.range == mCanvas.range &&
        from.space == canvasKind(from).space) {
        picture.format = kFormat;
        return picture;
    }
    mFitted = pictureOf(mCanvas.width, mCanvas.height); // the encoder may still hold the last one
    require(av_frame_copy_props(mFitted.get(), &picture), "picture properties");
    mFitted->color_range = mCanvas.range;
    mFitted->colorspace = mCanvas.space;
    if (!place.isExact) {
        blacken();
    }
    scaleOnto(picture, from, place);
    if (place.isExact) {
        repeatEdges(place);
    }
    return *mFitted;
}

PictureFitter::Place PictureFitter::placeOf(const AVFrame& picture) const {
    double aspect =
        pixelAspectOf(mContainersAspect.num > 0 ? mContainersAspect : picture.sample_aspect_ratio);
    int width = picture.width;
    int height = picture.height;
    if (mOrientation.isTransposed) {
        std::swap(width, height);
        aspect = 1 / aspect;
    }
    const auto isShortByOneAtMost = [](int from, int to) { return from == to || from + 1 == to; };
    const double stretch = aspect / pixelAspectOf(mCanvas.pixelAspect);
    const bool isSameAspect = std::abs(stretch - 1) < kSameAspect;
    if (isSameAspect && isShortByOneAtMost(width, mCanvas.width) &&
        isShortByOneAtMost(height, mCanvas.height)) {
        return {0, 0, width, height, true};
    }
    const double shownWidth = isSameAspect ? width : width * stretch;
    const double scale =
        std::min(mCanvas.width / shownWidth, static_cast<double>(mCanvas.height) / height);
    // Even sizes and corners, because each chroma sample covers two by two.
    const auto evenPart = [scale](double from, int limit) {
        return std::clamp(static_cast<int>(std::lround(from * scale / 2)) * 2, 2, limit);
    };
    Place place;
    place.width = evenPart(shownWidth, mCanvas.width);
    place.height = evenPart(height, mCanvas.height);
    place.left = (mCanvas.width - place.width) / 4 * 2;
    place.top = (mCanvas.height - place.height) / 4 * 2;
    return place;
}

PictureKind PictureFitter::kindOf(const AVFrame& picture) const {
    PictureKind kind;
    kind.width = picture.width;
    kind.height = picture.height;
    kind.format = static_cast<AVPixelFormat>(picture.format);
    kind.space =
        picture.colorspace == AVCOL_SPC_UNSPECIFIED ? mContainersSpace : picture.colorspace;
    kind.range = rangeOf(picture.format, picture.color_range == AVCOL_RANGE_UNSPECIFIED
                                             ? mContainersRange
                                             : picture.color_range);
    return kind;
}

PictureKind PictureFitter::canvasKind(const PictureKind& from) const {
    PictureKind kind;
    kind.format = kFormat;
    kind.range = mCanvas.range;
    kind.space = mCanvas.space;
    if (isRgb(from.format)) {
        if (kind.space == AVCOL_SPC_UNSPECIFIED) { // what players take it for
            kind.space = mCanvas.height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
        }
    } else if (from.space == AVCOL_SPC_UNSPECIFIED || kind.space == AVCOL_SPC_UNSPECIFIED) {
        kind.space = from.space;
    }
    return kind;
}

void PictureFitter::scaleOnto(const AVFrame& picture, const PictureKind& from, const Place& place) {
    PictureKind to = canvasKind(from);
    to.width = place.width;
    to.height = place.height;
    if (mOrientation.isTransposed) {
        std::swap(to.width, to.height);
    }
    if (mOrientation == Orientation{} && place.isExact) {
        scale(picture, from, *mFitted, to);
        return;
    }
    // The scaler writes up to a few columns too many, which here would be seen.
    const FramePtr lying = pictureOf(to.width, to.height);
    scale(picture, from, *lying, to);
    turnOnto(*lying, place);
}

void PictureFitter::scale(const AVFrame& picture, PictureKind from, const AVFrame& target,
                          PictureKind to) {
    const bool isByFields = mCanvas.isInterlaced && picture.interlaced_frame != 0 &&
                            from.height % 4 == 0 && to.height % 4 == 0;
    if (!isByFields) {
        mScaler.scale(from, planesOf(picture), to, planesOf(target));
        return;
    }
    from.height /= 2;
    to.height /= 2;
    for (const int field : {0, 1}) {
        mScaler.scale(from, planesOf(picture).field(field), to, planesOf(target).field(field));
    }
}

void PictureFitter::turnOnto(const AVFrame& lying, const Place& place) {
    const PicturePlanes from = planesOf(lying);
    const PicturePlanes to = planesOf(*mFitted, place.left, place.top);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const bool isLuma = plane == 0;
        turnPlane(mOrientation, from.data[plane], from.stride[plane], to.data[plane],
                  to.stride[plane], isLuma ? place.width : (place.width + 1) / 2,
                  isLuma ? place.height : (place.height + 1) / 2);
    }
}

void PictureFitter::repeatEdges(const Place& place) {
    // Chroma needs none: its planes round an odd size up.
    std::uint8_t* luma = mFitted->data[0];
    const std::ptrdiff_t stride = mFitted->linesize[0];
    if (place.width < mCanvas.width) {
        for (int y = 0; y < place.height; ++y) {
            luma[y * stride + place.width] = luma[y * stride + place.width - 1];
        }
    }
    if (place.height < mCanvas.height) {
        std::memcpy(luma + place.height * stride, luma + (place.height - 1) * stride,
                    static_cast<std::size_t>(mCanvas.width));
    }
}

void PictureFitter::blacken() {
    PicturePlanes planes = planesOf(*mFitted);
    std::array<std::ptrdiff_t, 4> strides{};
    std::ranges::copy(planes.stride, strides.begin());
    require(av_image_fill_black(planes.data.data(), strides.data(), kFormat, mCanvas.range,
                                mCanvas.width, mCanvas.height),
            "black picture");
}

} // namespace zelcore

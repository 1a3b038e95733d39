#include "engine/core/PictureFitter.h"

#include "engine/core/Failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>

namespace zelcore {

PictureFitter::PictureFitter(int width, int height) : mWidth(width), mHeight(height) {
}

AVFrame& PictureFitter::fit(AVFrame& picture) {
    if (picture.format == AV_PIX_FMT_YUV420P && picture.width == mWidth &&
        picture.height == mHeight) {
        return picture;
    }
    mFitted = makeFrame(); // the encoder may still hold the one before
    mFitted->format = AV_PIX_FMT_YUV420P;
    mFitted->width = mWidth;
    mFitted->height = mHeight;
    require(av_frame_get_buffer(mFitted.get(), 0), "picture buffer");
    require(av_frame_copy_props(mFitted.get(), &picture), "picture properties");
    const auto isShortByOneAtMost = [](int from, int to) { return from == to || from + 1 == to; };
    if (isShortByOneAtMost(picture.width, mWidth) && isShortByOneAtMost(picture.height, mHeight)) {
        scaleOnto(picture, 0, 0, picture.width, picture.height);
        repeatEdges(picture.width, picture.height);
        return *mFitted;
    }
    blacken();
    const double scale = std::min(static_cast<double>(mWidth) / picture.width,
                                  static_cast<double>(mHeight) / picture.height);
    // Even sizes and corners, because each chroma sample covers two by two.
    const auto evenPart = [scale](int from, int limit) {
        return std::clamp(static_cast<int>(std::lround(from * scale / 2)) * 2, 2, limit);
    };
    const int width = evenPart(picture.width, mWidth);
    const int height = evenPart(picture.height, mHeight);
    scaleOnto(picture, (mWidth - width) / 4 * 2, (mHeight - height) / 4 * 2, width, height);
    return *mFitted;
}

void PictureFitter::scaleOnto(const AVFrame& picture, int left, int top, int width, int height) {
    const auto format = static_cast<AVPixelFormat>(picture.format);
    mScaler.reset(sws_getCachedContext(mScaler.release(), picture.width, picture.height, format,
                                       width, height, AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr,
                                       nullptr, nullptr));
    if (mScaler == nullptr) {
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Pictures of ", picture.width, "x", picture.height, " in ",
                           av_get_pix_fmt_name(format), " cannot be converted"));
    }
    const auto at = [&](int plane, int x, int y) {
        return mFitted->data[plane] + static_cast<std::ptrdiff_t>(y) * mFitted->linesize[plane] + x;
    };
    const std::array<std::uint8_t*, 4> planes = {at(0, left, top), at(1, left / 2, top / 2),
                                                 at(2, left / 2, top / 2), nullptr};
    require(sws_scale(mScaler.get(), picture.data, picture.linesize, 0, picture.height,
                      planes.data(), mFitted->linesize),
            "picture conversion");
}

void PictureFitter::repeatEdges(int width, int height) {
    // Chroma needs none: its planes round an odd size up.
    std::uint8_t* luma = mFitted->data[0];
    const std::ptrdiff_t stride = mFitted->linesize[0];
    if (width < mWidth) {
        for (int y = 0; y < height; ++y) {
            luma[y * stride + width] = luma[y * stride + width - 1];
        }
    }
    if (height < mHeight) {
        std::memcpy(luma + height * stride, luma + (height - 1) * stride,
                    static_cast<std::size_t>(mWidth));
    }
}

void PictureFitter::blacken() {
    std::array<std::ptrdiff_t, 4> strides{};
    std::ranges::copy(std::span(mFitted->linesize).first(4), strides.begin());
    require(av_image_fill_black(mFitted->data, strides.data(), AV_PIX_FMT_YUV420P,
                                mFitted->color_range, mWidth, mHeight),
            "black picture");
}

} // namespace zelcore

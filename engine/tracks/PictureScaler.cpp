#include "engine/tracks/PictureScaler.h"

#include "engine/support/Failure.h"

namespace zelcore {

namespace {

/// libswscale's formats for full-range pictures of old are spelled as what they are.
AVPixelFormat plainFormat(AVPixelFormat format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P:
            return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ422P:
            return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ444P:
            return AV_PIX_FMT_YUV444P;
        case AV_PIX_FMT_YUVJ440P:
            return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ411P:
            return AV_PIX_FMT_YUV411P;
        default:
            return format;
    }
}

void throwIfFailed(int result, const PictureKind& from) {
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (result < 0) {
        const char* format = av_get_pix_fmt_name(from.format);
        throw Failure(ErrorCode::UnsupportedCodec,
                      text("Pictures of ", from.width, "x", from.height, " in ",
                           format == nullptr ? "no known format" : format,
                           " cannot be converted: ", ffmpegErrorText(result)));
    }
}

} // namespace

PicturePlanes PicturePlanes::field(int second) const {
    PicturePlanes lines = *this;
    for (std::size_t plane = 0; plane < data.size(); ++plane) {
        if (data[plane] != nullptr) {
            lines.data[plane] += static_cast<std::ptrdiff_t>(second) * stride[plane];
        }
        lines.stride[plane] *= 2;
    }
    return lines;
}

void PictureScaler::scale(const PictureKind& fromKind, const PicturePlanes& from,
                          const PictureKind& toKind, const PicturePlanes& to) {
    if (mScaler == nullptr || fromKind != mFrom || toKind != mTo) {
        mScaler.reset();
        open(fromKind, toKind);
    }
    throwIfFailed(sws_scale(mScaler.get(), from.data.data(), from.stride.data(), 0, fromKind.height,
                            to.data.data(), to.stride.data()),
                  fromKind);
}

void PictureScaler::open(const PictureKind& from, const PictureKind& to) {
    auto scaler = owned<ScalerPtr>(sws_alloc_context());
    const auto set = [&scaler](const char* name, std::int64_t value) {
        require(av_opt_set_int(scaler.get(), name, value, 0), name);
    };
    set("srcw", from.width);
    set("srch", from.height);
    set("src_format", plainFormat(from.format));
    set("src_range", from.range == AVCOL_RANGE_JPEG);
    set("dstw", to.width);
    set("dsth", to.height);
    set("dst_format", plainFormat(to.format));
    // Ranges that are told later than this leave some of its short cuts as they are.
    set("dst_range", to.range == AVCOL_RANGE_JPEG);
    set("sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND);
    throwIfFailed(sws_init_context(scaler.get(), nullptr, nullptr), from);
    throwIfFailed(
        sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(from.space),
                                 from.range == AVCOL_RANGE_JPEG, sws_getCoefficients(to.space),
                                 to.range == AVCOL_RANGE_JPEG, 0, 1 << 16, 1 << 16),
        from);
    mScaler = std::move(scaler);
    mFrom = from;
    mTo = to;
}

} // namespace zelcore

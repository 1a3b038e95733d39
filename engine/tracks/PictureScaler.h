#pragma once

#include "engine/support/AvHandles.h"

#include <array>

namespace zelcore {

/// How a picture's numbers are meant.
struct PictureKind {
    int width = 0;
    int height = 0;
    AVPixelFormat format = AV_PIX_FMT_NONE;
    AVColorSpace space = AVCOL_SPC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_MPEG;

    bool operator==(const PictureKind&) const = default;
};

/// Where a picture lies in memory.
struct PicturePlanes {
    std::array<std::uint8_t*, 4> data{};
    std::array<int, 4> stride{};

    /// Every second line, from the first or the second one on.
    PicturePlanes field(int second) const;
};

/// Changes size, pixel format, colour matrix and range.
class PictureScaler {
public:
    void scale(const PictureKind& fromKind, const PicturePlanes& from, const PictureKind& toKind,
               const PicturePlanes& to);

private:
    void open(const PictureKind& from, const PictureKind& to);

    PictureKind mFrom;
    PictureKind mTo;
    ScalerPtr mScaler;
};

} // namespace zelcore

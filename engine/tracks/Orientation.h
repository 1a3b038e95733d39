#pragma once

#include "engine/support/AvHandles.h"

namespace zelcore {

/// How decoded pictures are turned and mirrored to be shown: first transposed, then mirrored.
struct Orientation {
    bool isTransposed = false;
    bool isMirroredAcross = false; ///< left and right change places
    bool isMirroredDown = false;

    bool operator==(const Orientation&) const = default;
};

/// As the stream's display matrix says, to the nearest quarter turn.
Orientation orientationOf(const AVStream& stream);

/// Turns a plane of bytes. `width` and `height` are those of `to`.
void turnPlane(const Orientation& orientation, const std::uint8_t* from, int fromStride,
               std::uint8_t* to, int toStride, int width, int height);

} // namespace zelcore

#include "engine/tracks/Orientation.h"

#include <array>
#include <cmath>
#include <cstring>

namespace zelcore {

Orientation orientationOf(const AVStream& stream) {
    std::size_t size = 0;
    const auto* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    std::array<std::int32_t, 9> matrix{};
    if (data == nullptr || size < sizeof matrix) {
        return {};
    }
    std::memcpy(matrix.data(), data, sizeof matrix);
    // A pixel at (x, y) is shown at (a * x + c * y, b * x + d * y).
    const double a = matrix[0];
    const double b = matrix[1];
    const double c = matrix[3];
    const double d = matrix[4];
    if (std::abs(a) + std::abs(d) >= std::abs(b) + std::abs(c)) {
        return {false, a < 0, d < 0};
    }
    return {true, c < 0, b < 0};
}

void turnPlane(const Orientation& orientation, const std::uint8_t* from, int fromStride,
               std::uint8_t* to, int toStride, int width, int height) {
    for (int y = 0; y < height; ++y) {
        const std::ptrdiff_t down = orientation.isMirroredDown ? height - 1 - y : y;
        std::uint8_t* line = to + static_cast<std::ptrdiff_t>(y) * toStride;
        if (!orientation.isTransposed && !orientation.isMirroredAcross) {
            std::memcpy(line, from + down * fromStride, static_cast<std::size_t>(width));
            continue;
        }
        for (int x = 0; x < width; ++x) {
            const std::ptrdiff_t across = orientation.isMirroredAcross ? width - 1 - x : x;
            line[x] = orientation.isTransposed ? from[across * fromStride + down]
                                               : from[down * fromStride + across];
        }
    }
}

} // namespace zelcore

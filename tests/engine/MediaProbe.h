#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zelcore::testing {

struct ProbedTrack {
    bool isVideo() const { return width > 0; }

    std::string codec{};
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<double> times{};          ///< presentation, seconds, in decoding order
    std::vector<std::uint32_t> packets{}; ///< checksum of each packet
    double end = 0;                       ///< seconds
    std::size_t decoded = 0;              ///< pictures, or samples of one channel
    std::size_t damaged = 0;              ///< packets that do not decode
};

/// What is in a file, packet by packet and decoded, by libavformat's and libavcodec's word.
/// Empty when it cannot be opened.
std::vector<ProbedTrack> probe(const std::string& path);

} // namespace zelcore::testing

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zelcore::testing {

struct ProbedTrack {
    bool isVideo = false;
    std::string codec{};
    int width = 0;
    int height = 0;
    int sampleRate = 0;
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

/// True when this system's libavcodec has a decoder for every stream of a file.
bool canDecode(const std::string& path);

} // namespace zelcore::testing

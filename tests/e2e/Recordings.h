#pragma once

#include <string>
#include <vector>

namespace e2e {

/// Runs the ffmpeg program; throws std::runtime_error with its words when it fails.
void runFfmpeg(std::vector<std::string> arguments);

/// A recording of a moving picture and a tone, H.264 and AAC, `seconds` long.
void makeRecording(const std::string& path, int seconds);

/// A recording whose picture has to be transcoded, which takes a while.
void makeSlowRecording(const std::string& path, int seconds);

struct MediaFacts {
    std::vector<std::string> codecs; ///< of the streams, in order
    double seconds = 0;
};

/// What the ffprobe program finds in a file; empty when it takes it for no media file.
MediaFacts probe(const std::string& path);

} // namespace e2e

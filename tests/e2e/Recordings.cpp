#include "e2e/Recordings.h"

#include "support/ProcessRunner.h"

#include <sstream>
#include <stdexcept>

namespace e2e {

using tarn::testing::ProcessResult;
using tarn::testing::runProcess;

void runFfmpeg(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {FFMPEG_PROGRAM, "-nostdin", "-v", "error", "-y"});
    const ProcessResult result = runProcess({arguments, {}, ""});
    if (result.status != 0) {
        throw std::runtime_error("ffmpeg: " + result.errors);
    }
}

void makeRecording(const std::string& path, int seconds) {
    const std::string duration = std::to_string(seconds);
    runFfmpeg({"-f", "lavfi", "-i", "testsrc=s=320x240:r=25:d=" + duration, "-f", "lavfi", "-i",
               "sine=d=" + duration, "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt",
               "yuv420p", "-c:a", "aac", "-t", duration, path});
}

void makeSlowRecording(const std::string& path, int seconds) {
    runFfmpeg({"-f", "lavfi", "-i", "testsrc2=s=640x480:r=25:d=" + std::to_string(seconds), "-c:v",
               "msmpeg4v3", "-q:v", "5", path});
}

MediaFacts probe(const std::string& path) {
    const ProcessResult result = runProcess(
        {{FFPROBE_PROGRAM, "-v", "error", "-show_entries", "stream=codec_name:format=duration",
          "-of", "default=noprint_wrappers=1", path},
         {},
         ""});
    MediaFacts facts;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        const std::string value = line.substr(line.find('=') + 1);
        if (line.starts_with("codec_name=")) {
            facts.codecs.push_back(value);
        } else if (line.starts_with("duration=")) {
            facts.seconds = std::stod(value);
        }
    }
    return facts;
}

} // namespace e2e

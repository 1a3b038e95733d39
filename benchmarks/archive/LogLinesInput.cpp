#include "archive/LogLinesInput.h"

#include "logging/OurLogging.h"
#include "support/Process.h"

#include <random>
#include <string>

namespace benchmarks {
namespace {

constexpr long kLines = 870'000;

/// The lines of one conversion repeat, their figures do not.
class Conversions {
public:
    std::string next() {
        const long step = mStep++ % 40;
        const std::string folder =
            "/home/user/Recordings/2026-11-" + std::to_string(mRandom() % 28);
        if (step == 0) {
            return "startConvert source " + folder + "/meeting_" + std::to_string(mRandom()) +
                   ".mkv destination " + folder + "/meeting.mp4";
        }
        if (step == 1) {
            return "Video is copied: h264, 1280x720, " + std::to_string(mRandom() % 5000) +
                   " kbit/s; sound is copied: aac, 48000 Hz, 2 channels";
        }
        if (step == 39) {
            return "Converted " + std::to_string(mRandom() % 100'000'000) + " bytes in " +
                   std::to_string(mRandom() % 60'000) + " ms, file " + folder + "/meeting.mp4";
        }
        if (step % 7 == 3) {
            return "Sound jumps by 0." + std::to_string(mRandom() % 1000) + " s";
        }
        return "OnProgress percent:" + std::to_string(step * 100 / 40) + "." +
               std::to_string(mRandom() % 1000) + ", observers:" + std::to_string(mRandom() % 3);
    }

private:
    std::minstd_rand mRandom{20261121};
    long mStep = 0;
};

} // namespace

std::filesystem::path logOfConversions(const std::filesystem::path& inputs) {
    const auto path = inputs / "conversions_log.txt";
    if (std::filesystem::exists(path)) {
        return path;
    }
    const auto folder = inputs / "new-log";
    std::filesystem::create_directories(folder);
    inChildProcess([&] {
        OurLogging logging(folder.string(), {});
        Conversions conversions;
        for (long line = 0; line < kLines; ++line) {
            logging.log(conversions.next());
        }
        logging.drain();
        std::filesystem::rename(logging.path(), path);
        return Figures{};
    });
    std::filesystem::remove_all(folder);
    return path;
}

} // namespace benchmarks

// log-lines, log-scrub: 2 million lines into a file, flushed on every second line, until the last
// is on disk. log-scrub masks eight strings, one hit in every tenth line.
#include "logging/OurLogging.h"
#include "logging/PeerLogging.h"
#include "support/Clock.h"
#include "support/DiskFile.h"
#include "support/Options.h"
#include "support/Process.h"

#include <algorithm>
#include <stdexcept>
#include <sys/resource.h>

namespace benchmarks {
namespace {

constexpr long kLines = 2'000'000;

/// The kind of text that the tool masks: names of the user, of the computer and of folders.
const std::vector<std::string> kSecrets = {
    "jonathan.fairweather",
    "DESK-4F7K2QPL",
    "/home/jonathan.fairweather",
    "fairweather.local",
    "Quarterly board meeting",
    "jfairweather",
    "LAPTOP-0081",
    "Fairweather",
};

std::vector<std::string> linesWithSecrets() {
    std::vector<std::string> lines;
    for (const std::string& secret : kSecrets) {
        std::string line = "opened the recording of " + secret + " for reading, frame by frame ";
        line.resize(80, '.');
        lines.push_back(std::move(line));
    }
    return lines;
}

void check(const std::string& path, bool scrub) {
    std::vector<std::string> texts{"the recording", "recording of ********"};
    if (scrub) {
        texts.insert(texts.end(), kSecrets.begin(), kSecrets.end());
    }
    const std::vector<long> counts = countLines(path, texts);
    if (counts[0] != kLines) {
        throw std::runtime_error(path + " holds " + std::to_string(counts[0]) + " lines");
    }
    if (scrub && counts[1] != kLines / 10) {
        throw std::runtime_error(path + " holds " + std::to_string(counts[1]) + " masked lines");
    }
    if (std::any_of(counts.begin() + 2, counts.end(), [](long count) { return count != 0; })) {
        throw std::runtime_error(path + " holds a string that was to be masked");
    }
}

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024.0 / 1e6;
}

template <class Logging>
Figures measure(bool scrub, const std::string& folder) {
    settleDisk();
    const std::vector<std::string> secretLines = linesWithSecrets();
    Logging logging(folder, scrub ? kSecrets : std::vector<std::string>{});
    const double begin = monotonicSeconds();
    for (long line = 0; line < kLines; ++line) {
        if (scrub && line % 10 == 9) {
            logging.log(secretLines[static_cast<std::size_t>(line / 10) % secretLines.size()]);
        } else {
            logging.log(1'000'000'000L + line, static_cast<int>(1000 + line % 9000));
        }
    }
    const double handedOver = monotonicSeconds();
    logging.drain();
    const double written = monotonicSeconds();
    syncFile(logging.path());
    const double end = monotonicSeconds();
    const Figures figures{
        {"on disk", kLines / (end - begin) / 1e6},
        {"note million lines/s until written, not yet synced", kLines / (written - begin) / 1e6},
        {"note seconds until the caller had handed over all", handedOver - begin},
        {"note seconds of processor time", cpuSeconds()},
        {"note peak memory, MB", peakMegabytes()}};
    check(logging.path(), scrub);
    return figures;
}

template <class Logging>
Figures measureInChild(bool scrub, const Options& options) {
    const std::string folder = options.emptyFolder("log-lines").string();
    Figures figures = inChildProcess([&] { return measure<Logging>(scrub, folder); });
    options.emptyFolder("log-lines");
    return figures;
}

} // namespace

static int run(const Options& options) {
    const bool scrub = options.name == "log-scrub";
    Comparison comparison({{"ours", [&] { return measureInChild<OurLogging>(scrub, options); }},
                           {"spdlog", [&] { return measureInChild<PeerLogging>(scrub, options); }}},
                          {{scrub ? "log-scrub" : "log-lines", "on disk", "million lines/s",
                            Row::Goal::AtLeast, scrub ? 1.5 : 1.2}});
    return comparison.run(options.repetitionsOr(5));
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}

// growth: the time per unit of large work beside that of small work, both ours: masking, copying
// and archiving have to be linear.
#include "archive/OurArchive.h"
#include "logging/OurLogging.h"
#include "logging/RootLogger.h"
#include "support/Clock.h"
#include "support/DiskFile.h"
#include "support/Options.h"
#include "support/Process.h"

#include <fstream>
#include <stdexcept>

namespace benchmarks {
namespace {

constexpr double kLinear = 1.3;

/// One hit in every hundred characters.
std::string messageWithHits(std::size_t hits) {
    std::string message;
    for (std::size_t hit = 0; hit < hits; ++hit) {
        std::string piece = "recording of jonathan.fairweather, part " + std::to_string(hit) + " ";
        piece.resize(100, '.');
        message += piece;
    }
    return message;
}

/// Nanoseconds for a character of a message with so many hits.
Figures scrub(std::size_t hits, const std::filesystem::path& folder) {
    return inChildProcess([&] {
        OurLogging logging(folder.string(), {"jonathan.fairweather"});
        const std::string message = messageWithHits(hits);
        auto& logger = tarn::RootLogger::getInstance();
        const int times = static_cast<int>(1'000'000 / hits / 10);
        const double begin = monotonicSeconds();
        for (int time = 0; time < times; ++time) {
            if (logger.filterStrings(message).size() != message.size() - 12 * hits) {
                throw std::runtime_error("the message was not masked");
            }
        }
        return Figures{{"unit", (monotonicSeconds() - begin) * 1e9 / times /
                                    static_cast<double>(message.size())}};
    });
}

/// Milliseconds for a megabyte of a recording.
Figures convert(const std::string& source, const std::filesystem::path& folder) {
    settleDisk();
    const std::string destination = (folder / "meeting.mp4").string();
    const Usage usage = runCommand({RECORD_CONVERTER_PROGRAM, "--no-window", source, destination},
                                   (folder / "output.txt").string());
    std::filesystem::remove(destination);
    return {{"unit", usage.wallSeconds * 1e3 /
                         (static_cast<double>(std::filesystem::file_size(source)) / 1e6)},
            {"note peak memory, MB", usage.peakMegabytes}};
}

std::vector<std::pair<std::string, std::string>> writeFiles(const std::filesystem::path& folder,
                                                            int count) {
    std::vector<std::pair<std::string, std::string>> files;
    for (int number = 0; number < count; ++number) {
        const std::string name = "log_" + std::to_string(number) + ".txt";
        std::ofstream file(folder / name);
        for (int line = 0; line < 100; ++line) {
            file << "2026-11-21T11:05:19Z <Info> [4312:0x1a2c][]Recording:" << number << " write::"
                 << "frame " << line * 7919 % 1000 << " was written\n";
        }
        files.emplace_back(name, (folder / name).string());
    }
    return files;
}

/// Microseconds for each archived file.
Figures archive(int count, const Options& options) {
    const auto sources = options.emptyFolder("growth-files");
    const auto files = writeFiles(sources, count);
    const auto folder = options.emptyFolder("growth");
    settleDisk();
    return inChildProcess([&] {
        const double begin = monotonicSeconds();
        archiveByFileLogger(folder, files);
        return Figures{{"unit", (monotonicSeconds() - begin) * 1e6 / count}};
    });
}

template <class Work>
int compare(const std::string& name, const std::string& unit, Work large, Work small,
            int repetitions) {
    return Comparison({{"large", large}, {"small", small}},
                      {{name, "unit", unit, Row::Goal::AtMost, kLinear}})
        .run(repetitions);
}

int compareScrubs(const Options& options) {
    const auto folder = options.emptyFolder("growth");
    int status = 0;
    for (const std::size_t hits : {1'000U, 10'000U}) {
        const std::function<Figures()> large = [&, hits] { return scrub(hits, folder); };
        const std::function<Figures()> small = [&] { return scrub(100, folder); };
        status |= compare("growth scrub " + std::to_string(hits) + " hits, by 100", "ns/character",
                          large, small, options.repetitionsOr(5));
    }
    return status;
}

int compareConversions(const Options& options) {
    const auto folder = options.emptyFolder("growth");
    const std::string smallest = options.input("recording-100.mkv");
    warmUp(smallest);
    int status = 0;
    for (const std::string megabytes : {"1000", "4000"}) {
        const std::string source = options.input("recording-" + megabytes + ".mkv");
        warmUp(source);
        const std::function<Figures()> large = [&] { return convert(source, folder); };
        const std::function<Figures()> small = [&] { return convert(smallest, folder); };
        status |= compare("growth convert " + megabytes + " MB, by 100 MB", "ms/MB", large, small,
                          options.repetitionsOr(3));
    }
    return status;
}

int compareArchives(const Options& options) {
    int status = 0;
    for (const int count : {1'000, 10'000}) {
        const std::function<Figures()> large = [&, count] { return archive(count, options); };
        const std::function<Figures()> small = [&] { return archive(10, options); };
        status |= compare("growth archive " + std::to_string(count) + " files, by 10", "us/file",
                          large, small, options.repetitionsOr(3));
    }
    options.emptyFolder("growth-files");
    return status;
}

} // namespace

static int run(const Options& options) {
    const int status =
        compareScrubs(options) | compareConversions(options) | compareArchives(options);
    options.emptyFolder("growth");
    return status;
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}

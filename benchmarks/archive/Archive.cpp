// archive: 100 MB of log lines into a zip file, against zip -6. Ours copies the file into its work
// folder first, as archiving does, and that counts.
#include "archive/LogLinesInput.h"
#include "archive/OurArchive.h"
#include "support/Clock.h"
#include "support/DiskFile.h"
#include "support/Options.h"
#include "support/Process.h"

namespace benchmarks {
namespace {

double megabytes(const std::filesystem::path& file) {
    return static_cast<double>(std::filesystem::file_size(file)) / 1e6;
}

Figures archiveOurs(const std::string& log, const std::filesystem::path& folder) {
    return inChildProcess([&] {
        const double begin = monotonicSeconds();
        const auto archive = archiveByFileLogger(folder, {{"current_log.txt", log}});
        return Figures{{"wall", monotonicSeconds() - begin}, {"size", megabytes(archive)}};
    });
}

Figures archiveByZip(const std::string& log, const std::filesystem::path& folder) {
    const auto archive = folder / "peer.zip";
    const Usage usage =
        runCommand({"zip", "-6", "-q", "-j", archive.string(), log}, folder.string() + "/zip.txt");
    return {{"wall", usage.wallSeconds}, {"size", megabytes(archive)}};
}

} // namespace

static int run(const Options& options) {
    const std::string log = logOfConversions(options.data / "inputs").string();
    warmUp(log);
    const auto inEmptyFolder = [&](auto archive) {
        return [&options, &log, archive] {
            const auto folder = options.emptyFolder("archive");
            settleDisk();
            return archive(log, folder);
        };
    };
    using enum Row::Goal;
    Comparison comparison(
        {{"ours", inEmptyFolder(archiveOurs)}, {"zip", inEmptyFolder(archiveByZip)}},
        {{"archive wall", "wall", "s", AtMost, 1.0}, {"archive size", "size", "MB", AtMost, 1.02}});
    const int status = comparison.run(options.repetitionsOr(5));
    printNote("archive: " + withUnit(megabytes(log), "MB of log lines"));
    options.emptyFolder("archive");
    return status;
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}

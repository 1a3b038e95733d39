// convert-copy, convert-floor, convert-transcode, convert-parts: the whole program in terminal
// mode, against the ffmpeg program or plain cp, each followed by a sync of the result. Ours syncs,
// reopens and compares the result itself, and that counts in its time.
#include "support/DiskFile.h"
#include "support/Options.h"
#include "support/Process.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace benchmarks {
namespace {

struct Job {
    std::vector<std::string> sources;
    std::string destination;
    std::string scratch;
};

/// The commands of one side, run one after the other; the result is thrown away afterwards.
Figures convert(const Job& job, const std::vector<std::vector<std::string>>& commands) {
    settleDisk();
    Figures figures;
    for (const auto& command : commands) {
        const Usage usage = runCommand(command, job.scratch + "/output.txt");
        figures["wall"] += usage.wallSeconds;
        figures["memory"] = std::max(figures["memory"], usage.peakMegabytes);
        figures["note seconds of processor time"] += usage.cpuSeconds;
    }
    figures["note size of the result, MB"] =
        static_cast<double>(std::filesystem::file_size(job.destination)) / 1e6;
    std::filesystem::remove(job.destination);
    return figures;
}

Figures convertOurs(const Job& job) {
    std::vector<std::string> command{RECORD_CONVERTER_PROGRAM, "--no-window"};
    command.insert(command.end(), job.sources.begin(), job.sources.end());
    command.push_back(job.destination);
    return convert(job, {command});
}

Figures convertByFfmpeg(const Job& job, const std::vector<std::string>& input,
                        const std::vector<std::string>& output) {
    std::vector<std::string> command{"ffmpeg",    "-nostdin", "-hide_banner",
                                     "-loglevel", "error",    "-y"};
    command.insert(command.end(), input.begin(), input.end());
    command.insert(command.end(), output.begin(), output.end());
    command.push_back(job.destination);
    return convert(job, {command, {"sync", job.destination}});
}

Side copyPeer(const Job& job) {
    return {"ffmpeg", [=] { return convertByFfmpeg(job, {"-i", job.sources[0]}, {"-c", "copy"}); }};
}

Side floorPeer(const Job& job) {
    return {"cp", [=] {
                return convert(
                    job, {{"cp", job.sources[0], job.destination}, {"sync", job.destination}});
            }};
}

/// The encoder settings are those of our engine.
Side transcodePeer(const Job& job) {
    return {"ffmpeg", [=] {
                return convertByFfmpeg(job, {"-i", job.sources[0]},
                                       {"-c:v", "libx264", "-preset", "veryfast", "-crf", "21",
                                        "-pix_fmt", "yuv420p", "-c:a", "aac", "-b:a", "160k"});
            }};
}

Side partsPeer(const Job& job) {
    const std::string list = job.scratch + "/parts.txt";
    std::ofstream file(list);
    for (const std::string& part : job.sources) {
        file << "file '" << part << "'\n";
    }
    return {
        "ffmpeg", [=] {
            return convertByFfmpeg(job, {"-f", "concat", "-safe", "0", "-i", list}, {"-c", "copy"});
        }};
}

std::vector<std::string> sourcesOf(const Options& options) {
    std::vector<std::string> sources;
    if (options.name == "convert-parts") {
        for (int part = 1; part <= 8; ++part) {
            sources.push_back(options.input("part" + std::to_string(part) + ".mkv"));
        }
    } else if (options.name == "convert-transcode") {
        sources.push_back(options.input("minute.webm"));
    } else {
        sources.push_back(options.input("recording-1000.mkv"));
    }
    return sources;
}

} // namespace

static int run(const Options& options) {
    Job job{sourcesOf(options), {}, std::filesystem::absolute(options.emptyFolder("convert"))};
    job.destination = job.scratch + "/meeting.mp4";
    for (const std::string& source : job.sources) {
        warmUp(source);
    }
    using enum Row::Goal;
    std::vector<Row> rows{{options.name + " wall", "wall", "s", AtMost, 1.0}};
    int repetitions = 5;
    Side peer;
    if (options.name == "convert-copy") {
        peer = copyPeer(job);
        rows.push_back({options.name + " peak memory", "memory", "MB", AtMost, 1.0});
    } else if (options.name == "convert-floor") {
        peer = floorPeer(job);
        rows[0].ratio = 1.3;
    } else if (options.name == "convert-transcode") {
        peer = transcodePeer(job);
        repetitions = 3;
    } else if (options.name == "convert-parts") {
        peer = partsPeer(job);
    } else {
        throw std::invalid_argument("name one of convert-copy, -floor, -transcode, -parts");
    }
    Comparison comparison({{"ours", [&] { return convertOurs(job); }}, peer}, rows);
    return comparison.run(options.repetitionsOr(repetitions));
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}

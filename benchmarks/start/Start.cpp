// start: from the call of the entry point to the first frame of the window, against a bare QML
// engine with an empty window of the same style on the same backend. Both run in start-probe.
#include "support/DiskFile.h"
#include "support/Options.h"
#include "support/Process.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace benchmarks {
namespace {

constexpr const char* kResult = "milliseconds to the first frame: ";

Figures probe(std::vector<std::string> arguments, const std::string& log) {
    arguments.insert(arguments.begin(), START_PROBE);
    const Usage usage = runCommand(arguments, log);
    std::ifstream output(log);
    for (std::string line; std::getline(output, line);) {
        if (line.starts_with(kResult)) {
            return {{"start", std::stod(line.substr(std::string(kResult).size()))},
                    {"note milliseconds from exec to the end", usage.wallSeconds * 1e3}};
        }
    }
    throw std::runtime_error("the probe showed no frame, see " + log);
}

} // namespace

static int run(const Options& options) {
    setenv("QT_QUICK_BACKEND", "software", 1);
    const std::string source = options.input("minute.mkv");
    const std::string scratch = std::filesystem::absolute(options.emptyFolder("start")).string();
    const std::string log = scratch + "/output.txt";
    const auto ours = [&] {
        // The window's run deletes its source when it is done.
        std::filesystem::remove(scratch + "/meeting.mkv");
        std::filesystem::create_hard_link(source, scratch + "/meeting.mkv");
        return probe({"ours", scratch + "/meeting.mkv", scratch + "/meeting.mp4"}, log);
    };
    warmUp(source);
    Comparison comparison({{"ours", ours}, {"bare window", [&] { return probe({"theirs"}, log); }}},
                          {{"start", "start", "ms", Row::Goal::AtMost, 1.25}});
    return comparison.run(options.repetitionsOr(15));
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}

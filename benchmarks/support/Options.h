#pragma once

#include <filesystem>
#include <string>

namespace benchmarks {

/// Command line of every benchmark: [--data FOLDER] [--repetitions N] [NAME].
struct Options {
    std::filesystem::path data; ///< inputs in "inputs", scratch files anywhere else
    int repetitions = 0;        ///< 0: the benchmark's own number
    std::string name;           ///< for a program that knows several

    /// Throws std::invalid_argument with a sentence for the user.
    static Options parse(int argc, char** argv);

    int repetitionsOr(int standard) const { return repetitions > 0 ? repetitions : standard; }
    /// An input made by scripts/bench.sh; throws when it is not there.
    std::string input(const std::string& file) const;
    /// An empty folder of this name, made anew.
    std::filesystem::path emptyFolder(const std::string& folder) const;
};

/// What every main does: parse, run, and turn an exception into a sentence and status 2.
int runBenchmark(int argc, char** argv, int (*run)(const Options& options));

} // namespace benchmarks

#include "support/Options.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string_view>

namespace benchmarks {

Options Options::parse(int argc, char** argv) {
    Options options;
    options.data = BENCHMARK_DATA_FOLDER;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (argument.starts_with("--") && index + 1 == argc) {
            throw std::invalid_argument(std::string(argument) + " needs a value");
        }
        if (argument == "--data") {
            options.data = argv[++index];
        } else if (argument == "--repetitions") {
            options.repetitions = std::stoi(argv[++index]);
        } else if (argument.starts_with("--") || !options.name.empty()) {
            throw std::invalid_argument("unknown argument " + std::string(argument));
        } else {
            options.name = argument;
        }
    }
    std::filesystem::create_directories(options.data);
    return options;
}

std::string Options::input(const std::string& file) const {
    const auto path = data / "inputs" / file;
    if (!std::filesystem::exists(path)) {
        throw std::runtime_error(path.string() + " is missing; scripts/bench.sh makes it");
    }
    return path.string();
}

std::filesystem::path Options::emptyFolder(const std::string& folder) const {
    const auto path = data / folder;
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    return path;
}

int runBenchmark(int argc, char** argv, int (*run)(const Options& options)) {
    try {
        return run(Options::parse(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 2;
    }
}

} // namespace benchmarks

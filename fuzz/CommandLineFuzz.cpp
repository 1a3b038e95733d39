#include "fuzz/Input.h"
#include "launcher/usage/Options.h"
#include "launcher/window/SourceListEncoder.h"
#include "recordconverter/SourceList.h"

#include <algorithm>

// Each line is an argument.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> arguments = fuzz::Input(data, size).lines();
    const launcher::CommandLine commandLine = launcher::parseCommandLine(arguments);
    if (const auto* options = std::get_if<launcher::Options>(&commandLine)) {
        FUZZ_EXPECT(!options->sources.empty());
        FUZZ_EXPECT(!options->destination.empty() || options->each || options->sources.size() == 1);
        FUZZ_EXPECT(std::ranges::find(options->sources, "") == options->sources.end());
        // What the launcher hands to the window is read back as the very same paths.
        const auto isPlain = [](const std::string& path) {
            return path.find_first_of("|:") == std::string::npos;
        };
        if (std::ranges::all_of(options->sources, isPlain)) {
            FUZZ_EXPECT(recordconverter::expandSourceList(
                            launcher::encodeSourceList(options->sources)) == options->sources);
        }
    } else if (const auto* error = std::get_if<launcher::UsageError>(&commandLine)) {
        FUZZ_EXPECT(!error->sentence.empty());
        const auto isRaw = [](char c) { return c == '\x1b' || c == '\r' || c == '\n'; };
        FUZZ_EXPECT(std::ranges::none_of(error->sentence, isRaw));
    }
    return 0;
}

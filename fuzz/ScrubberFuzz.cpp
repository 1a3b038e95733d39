#include "fuzz/Input.h"
#include "logging/Scrubber.h"

#include <algorithm>

namespace {

/// Replaces and searches again from the front, as slowly as that is.
std::string plainScrub(std::vector<std::string> entries, std::string text, bool ignoresCase) {
    const auto folded = [&](std::string letters) {
        const auto fold = [&](char c) {
            return ignoresCase && c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        };
        std::ranges::transform(letters, letters.begin(), fold);
        return letters;
    };
    std::ranges::stable_sort(entries, std::greater(), &std::string::size);
    for (const std::string& entry : entries) {
        if (entry.find_first_not_of('*') == std::string::npos) {
            continue; // would be found in its own mask for ever
        }
        for (std::size_t at = 0; (at = folded(text).find(folded(entry))) != std::string::npos;) {
            text.replace(at, entry.size(), "********");
        }
    }
    return text;
}

} // namespace

// The first three lines are what is hidden, the rest is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, std::min<std::size_t>(size, 2000));
    const bool ignoresCase = size % 2 == 1;
    tarn::Scrubber scrubber(ignoresCase);
    std::vector<std::string> entries;
    for (int count = 0; count < 3; ++count) {
        const std::string entry = input.line();
        if (entry.size() >= 3 && scrubber.add(entry)) {
            entries.push_back(entry);
        }
    }
    const std::string text = input.rest();
    std::string scrubbed = text;
    scrubber.scrub(scrubbed);
    FUZZ_EXPECT(scrubbed == plainScrub(entries, text, ignoresCase));
    return 0;
}

#include "fuzz/Input.h"
#include "fuzz/MemoryFile.h"
#include "utils/FileUtils.h"

#include <algorithm>

namespace {

std::vector<std::string> plainLines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const bool isReturned = end > begin && text[end - 1] == '\r';
        lines.push_back(text.substr(begin, end - begin - (isReturned ? 1 : 0)));
        begin = end + 1;
    }
    return lines;
}

/// From the nearest line break at or before the third byte from the end, forwards.
std::string plainLastLine(const std::string& text) {
    const std::size_t lineBreak = text.rfind('\n', std::max<std::size_t>(text.size(), 3) - 3);
    if (lineBreak == std::string::npos) {
        return {};
    }
    const std::vector<std::string> lines = plainLines(text.substr(lineBreak + 1));
    return lines.empty() ? "" : lines.front();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::Input(data, size).rest();
    const fuzz::MemoryFile file(data, size);
    const tarn::FileUtils files{};
    const std::vector<std::string> lines = plainLines(text);
    FUZZ_EXPECT(files.readAllLines(file.path()) == lines);
    FUZZ_EXPECT(files.readFirstLine(file.path()) == (lines.empty() ? "" : lines.front()));
    const std::size_t middle = lines.size() / 2;
    FUZZ_EXPECT(files.readSpecifiedLine(file.path(), middle) ==
                (lines.empty() ? "" : lines[middle]));
    FUZZ_EXPECT(files.readSpecifiedLine(file.path(), lines.size()).empty());
    FUZZ_EXPECT(files.readLastLine(file.path()) == plainLastLine(text));
    return 0;
}

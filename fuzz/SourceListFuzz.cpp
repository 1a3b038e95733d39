#include "fuzz/Input.h"
#include "recordconverter/SourceList.h"

namespace {

/// The same expansion, character by character.
std::vector<std::string> plainExpansion(const std::string& argument) {
    const std::size_t bar = argument.find('|');
    if (bar == std::string::npos) {
        return {argument};
    }
    if (argument.rfind('|') != bar) {
        return {};
    }
    const std::string pattern = argument.substr(0, bar);
    std::string stem = pattern;
    std::string extension;
    if (const std::size_t dot = pattern.rfind('.'); dot != std::string::npos) {
        stem = pattern.substr(0, dot);
        extension = dot + 1 == pattern.size() ? "" : pattern.substr(dot);
    }
    std::vector<std::string> paths{stem};
    for (const char character : argument.substr(bar + 1)) {
        if (character == ':') {
            paths.back() += extension;
            paths.push_back(stem);
        } else {
            paths.back() += character;
        }
    }
    paths.back() += extension;
    return paths;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string argument = fuzz::Input(data, size).rest();
    FUZZ_EXPECT(recordconverter::expandSourceList(argument) == plainExpansion(argument));
    return 0;
}

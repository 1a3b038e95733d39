#include "fuzz/Input.h"
#include "logging/ControlCharacters.h"
#include "platform/Text.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::Input(data, size).rest();
    std::string escaped = text;
    tarn::escapeControlCharacters(escaped);
    FUZZ_EXPECT(tarn::platform::isValidUtf8(escaped));
    const auto isControl = [](unsigned char c) { return (c < 0x20 && c != '\t') || c == 0x7F; };
    FUZZ_EXPECT(std::ranges::none_of(escaped, isControl));
    std::string again = escaped;
    tarn::escapeControlCharacters(again);
    FUZZ_EXPECT(again == escaped);
    const auto isPlain = [](unsigned char c) { return (c >= 0x20 && c < 0x7F) || c == '\t'; };
    FUZZ_EXPECT(!std::ranges::all_of(text, isPlain) || escaped == text);
    return 0;
}

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// The fuzzer's bytes, cut into texts at newlines, so that seeds can be written by hand.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : mRest(reinterpret_cast<const char*>(data), size) {}

    std::string line() {
        const std::size_t end = mRest.find('\n');
        std::string text(mRest.substr(0, end));
        mRest.remove_prefix(end == std::string_view::npos ? mRest.size() : end + 1);
        return text;
    }
    std::string rest() { return std::string(mRest); }
    std::vector<std::string> lines() {
        std::vector<std::string> all;
        while (!mRest.empty()) {
            all.push_back(line());
        }
        return all;
    }

private:
    std::string_view mRest;
};

/// Ends the run with a report: what the fuzzer looks for besides crashes.
#define FUZZ_EXPECT(condition) ((condition) ? static_cast<void>(0) : __builtin_trap())

} // namespace fuzz

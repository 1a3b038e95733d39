#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace launcher {

/// A text in JSON's quotes. What would drive a terminal or turn the reading order round is written
/// by its number; a byte 0xXX that is not UTF-8 becomes \udcXX, which no UTF-8 text contains.
std::string jsonText(std::string_view text);

/// One event for a program that reads standard output: an object on a line of its own.
class JsonLine {
public:
    explicit JsonLine(std::string_view event) : mText("{\"event\":" + jsonText(event)) {}

    JsonLine& add(std::string_view name, std::string_view text);
    JsonLine& add(std::string_view name, std::int64_t number);
    JsonLine& add(std::string_view name, const std::vector<std::string>& texts);
    void write() const;

private:
    std::string mText;
};

} // namespace launcher

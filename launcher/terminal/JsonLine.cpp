#include "launcher/terminal/JsonLine.h"

#include "launcher/Texts.h"
#include "platform/Terminal.h"
#include "platform/Utf8.h"

#include <array>
#include <cstdio>

namespace launcher {
namespace {

std::string byNumber(char32_t value) {
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(value));
    return code.data();
}

} // namespace

std::string jsonText(std::string_view text) {
    constexpr char32_t kLoneBytes = 0xDC00;
    std::string quoted = "\"";
    for (std::size_t at = 0; at < text.size();) {
        const auto character = tarn::platform::decodeUtf8(text, at);
        const std::string_view raw = text.substr(at, character.length);
        if (!character.valid) {
            for (const char byte : raw) {
                quoted += byNumber(kLoneBytes + static_cast<unsigned char>(byte));
            }
        } else if (raw == "\"" || raw == "\\") {
            quoted.append("\\").append(raw);
        } else if (visible(raw) != raw) {
            quoted += byNumber(character.value);
        } else {
            quoted += raw;
        }
        at += character.length;
    }
    return quoted + '"';
}

JsonLine& JsonLine::add(std::string_view name, std::string_view text) {
    mText.append(",").append(jsonText(name)).append(":").append(jsonText(text));
    return *this;
}

JsonLine& JsonLine::add(std::string_view name, std::int64_t number) {
    mText.append(",").append(jsonText(name)).append(":").append(std::to_string(number));
    return *this;
}

JsonLine& JsonLine::add(std::string_view name, const std::vector<std::string>& texts) {
    mText.append(",").append(jsonText(name)).append(":[");
    for (const std::string& text : texts) {
        mText.append(&text == &texts.front() ? "" : ",").append(jsonText(text));
    }
    mText += ']';
    return *this;
}

void JsonLine::write() const {
    tarn::platform::writeTerminal(tarn::platform::TerminalStream::Output, mText + "}\n");
}

} // namespace launcher

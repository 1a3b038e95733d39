#include "launcher/usage/Help.h"

#include "launcher/Texts.h"
#include "launcher/usage/Meanings.h"
#include "launcher/usage/OptionTable.h"

#include <algorithm>

namespace launcher {
namespace {

constexpr std::size_t kWidth = 80;

/// `lead` in a column of that width, the words of `text` beside it.
void appendEntry(std::string& all, std::string lead, std::size_t column, std::string_view text) {
    if (lead.size() + 2 > column) {
        all.append(lead).append("\n");
        lead.clear();
    }
    std::string line = lead + std::string(column - lead.size(), ' ');
    bool isEmpty = true;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string_view word = text.substr(at, end - at);
        if (!isEmpty && line.size() + 1 + word.size() > kWidth) {
            all.append(line).append("\n");
            line.assign(column, ' ');
            isEmpty = true;
        }
        line.append(isEmpty ? "" : " ").append(word);
        isEmpty = false;
        at = end + 1;
    }
    all.append(line).append("\n");
}

} // namespace

std::string helpText(std::string_view logFolder) {
    constexpr std::size_t kOptionColumn = 27;
    constexpr std::size_t kStatusColumn = 8;
    std::string text;
    for (const std::string_view usage : allUsages()) {
        text.append(text.empty() ? "usage: " : "       ")
            .append("record-converter ")
            .append(usage)
            .append("\n");
    }
    text += R"(
Turns a recording into an ordinary .mp4 file: SOURCE with .mp4 as its ending,
beside it, or DESTINATION. Several sources before a destination are parts of one
recording, in the given order.

)";
    for (const OptionEntry& option : allOptions()) {
        std::string lead = "  " + std::string(option.name);
        if (!option.value.empty()) {
            lead.append(" ").append(option.value);
        }
        appendEntry(text, lead, kOptionColumn, option.meaning);
    }
    appendEntry(text, "  --", kOptionColumn, "end of the options");
    text +=
        "\nCtrl-C stops a conversion, removes what was written and keeps the sources.\n"
        "\nexit status, of several files the worst; standard error says why:\n";
    for (const Meaning& status : statusMeanings()) {
        appendEntry(text, "  " + std::to_string(status.number), kStatusColumn, status.text);
    }
    return text.append("\nlog: ").append(visible(logFolder)).append("\n");
}

std::string versionText() {
    return "record-converter " RECORD_CONVERTER_VERSION "\n";
}

} // namespace launcher

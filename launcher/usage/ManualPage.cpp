#include "launcher/usage/Manual.h"
#include "launcher/usage/Meanings.h"
#include "launcher/usage/OptionTable.h"

namespace launcher {
namespace {

/// Text that roff takes literally.
std::string literal(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        if (c == '\\') {
            shown += "\\e";
        } else if (c == '-') {
            shown += "\\-";
        } else {
            shown += c;
        }
    }
    return shown.starts_with('.') || shown.starts_with('\'') ? "\\&" + shown : shown;
}

std::string sentence(std::string_view text) {
    std::string shown = literal(text);
    if (shown.front() >= 'a' && shown.front() <= 'z') {
        shown.front() = static_cast<char>(shown.front() - 'a' + 'A');
    }
    return shown + ".\n";
}

std::string list(std::span<const Meaning> meanings) {
    std::string text;
    for (const Meaning& each : meanings) {
        text += ".TP\n.B " + literal(std::to_string(each.number)) + "\n" + sentence(each.text);
    }
    return text;
}

} // namespace

std::string manualPage() {
    std::string page =
        ".TH RECORD\\-CONVERTER 1 2026-11-22 \"record\\-converter " RECORD_CONVERTER_VERSION
        "\"\n"
        ".SH NAME\nrecord\\-converter \\- turn a recording into an ordinary .mp4 "
        "file\n.SH SYNOPSIS\n.nf\n";
    for (const std::string_view usage : allUsages()) {
        page += "\\fBrecord\\-converter\\fP " + literal(usage) + "\n";
    }
    page += R"(.fi
.SH DESCRIPTION
Picture and sound are copied wherever MP4 can carry them and common players play them;
the rest is transcoded.
The destination is
.IR DESTINATION ,
or, where one
.I SOURCE
alone is given, the file of its name that ends in .mp4, beside it;
a source that is .mp4 itself becomes "name (converted).mp4".
Several sources before a destination are the parts of one recording, in that order.
The destination appears under its name when it is complete and verified.
A file that is there already is left alone unless
.B \-\-overwrite
is given.
.PP
With
.B \-\-each
names that would be the same in one folder get a number: "name (2).mp4".
A failure does not stop the rest.
.PP
Ctrl\-C stops a conversion, removes what was written and keeps the sources.
.SH OPTIONS
)";
    for (const OptionEntry& option : allOptions()) {
        page += ".TP\n.B " + literal(option.name);
        page += option.value.empty() ? "" : " " + literal(option.value);
        page += "\n" + sentence(option.meaning);
    }
    page +=
        ".TP\n.B \\-\\-\nEnd of the options.\n.SH EXIT STATUS\nOf several files the worst: 130, "
        "1, 2, 3, 0 in this order.\n" +
        list(statusMeanings());
    page += R"(.SH FILES
.TP
.I $XDG_DATA_HOME/QuorellTarn/Logs/record\-converter/current_log.txt
The log of the last run, by default below
.IR ~/.local/share .
.SH ERRORS
The media engine's own numbers:
)" + list(errorMeanings());
    return page;
}

} // namespace launcher

#pragma once

#include <span>
#include <string_view>

namespace launcher {

enum class OptionId {
    NoWindow,
    Each,
    To,
    Overwrite,
    DeleteSources,
    Quality,
    FastStart,
    Json,
    Theme,
    EngineFolder,
    ArchiveLogs,
    Explain,
    Help,
    Version,
};

/// One option of the command line. The parser, the help, the manual and the shells' completions are
/// made of these.
struct OptionEntry {
    OptionId id;
    std::string_view name;
    /// "FOLDER" and "NUMBER" stand for one, "light|dark" for one of these words, empty for none.
    std::string_view value;
    std::string_view meaning; ///< a sentence without its full stop

    bool takesWord() const { return value.contains('|'); }
};

std::span<const OptionEntry> allOptions();
/// Null when there is none of that name.
const OptionEntry* findOption(std::string_view name);
/// Whether `word` is one of those that stand between the bars of `words`.
bool isOneOf(std::string_view words, std::string_view word);

/// What the program is called with, line by line, without its name.
std::span<const std::string_view> allUsages();

} // namespace launcher

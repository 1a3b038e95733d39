#pragma once

#include <string>
#include <variant>
#include <vector>

namespace launcher {

enum class Theme { Desktop, Light, Dark };

/// What the command line asks for. Paths are UTF-8, as they were given.
struct Options {
    std::vector<std::string> sources;
    std::string destination; ///< empty: beside the only source, or with `each`
    bool each = false;       ///< a file of its own from each source, or recording in it
    std::string folder;      ///< for those files; empty: beside the source
    std::string quality;     ///< empty: the engine's own choice
    bool fastStart = false;
    bool json = false;
    std::string engineFolder; ///< empty: the runtime folder beside the program
    Theme theme = Theme::Desktop;
    bool window = true;
    bool overwrite = false;
    bool deleteSources = false;
};

/// Pack the log files into a zip file in this folder.
struct ArchiveWanted {
    std::string destination;
};

/// Say what a number means.
struct ExplanationWanted {
    std::string number;
};

struct HelpWanted {};
struct VersionWanted {};
/// A sentence that says what is wrong with the command line.
struct UsageError {
    std::string sentence;
    bool json = false; ///< a program wants to hear it, too
};

using CommandLine =
    std::variant<Options, ArchiveWanted, ExplanationWanted, HelpWanted, VersionWanted, UsageError>;

/// Reads the arguments that follow the program's name. "--" ends the options; "-" is no option.
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

} // namespace launcher

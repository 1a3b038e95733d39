#pragma once

#include <optional>
#include <string>
#include <vector>

namespace launcher {

/// A conversion to be done, all paths absolute and UTF-8.
struct Job {
    std::vector<std::string> sources;
    std::string destination;
    std::string engineFolder;
    bool overwrite = false;
    bool deleteSources = false;
    std::string quality{}; ///< empty: the engine's own choice
    bool fastStart = false;
    std::vector<std::string> spared{}; ///< what the destination must not be, beside the sources
};

/// One sentence that names what stands in the way and what to do; nothing when the way is free.
using Objection = std::optional<std::string>;

/// The sources can be read, and the destination can be written, is none of them and replaces
/// nothing without being asked to.
Objection checkFiles(const Job& job);

/// New files can be written in the folder.
Objection checkFolder(const std::string& folder);

/// The engine library is there, loads and exports its factory. It stays loaded for the life of the
/// process.
Objection checkEngine(const std::string& engineFolder);

/// Tells the engine what was chosen for its conversions, which an engine need not know.
Objection applyChoices(const Job& job);

} // namespace launcher

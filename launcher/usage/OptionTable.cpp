#include "launcher/usage/OptionTable.h"

#include <algorithm>
#include <array>

namespace launcher {
namespace {

constexpr std::array kUsages = std::to_array<std::string_view>({
    "[options] SOURCE",
    "[options] SOURCE... DESTINATION",
    "[options] --each SOURCE... [--to FOLDER]",
    "--archive-logs FOLDER",
    "--explain NUMBER",
});

constexpr std::array kOptions = std::to_array<OptionEntry>({
    {OptionId::NoWindow, "--no-window", "", "convert in the terminal, without a window"},
    {OptionId::Each, "--each", "",
     "make a file of its own from every SOURCE, one after the other, in the terminal; a folder "
     "stands for the recordings in it that are not .mp4 already"},
    {OptionId::To, "--to", "FOLDER",
     "with --each: the folder for the new files; default: each beside its source"},
    {OptionId::Overwrite, "--overwrite", "",
     "replace a destination that exists; default: refuse it"},
    {OptionId::DeleteSources, "--delete-sources", "",
     "delete the sources when all that they hold is in the destination; default: keep them"},
    {OptionId::Quality, "--quality", "small|normal|high",
     "of pictures that MP4 cannot carry as they are; default: normal"},
    {OptionId::FastStart, "--fast-start", "",
     "put the index in front, for players that begin while the file is still on its way"},
    {OptionId::Json, "--json", "",
     "tell a program what happens, on standard output, one JSON object a line; in the terminal"},
    {OptionId::Theme, "--theme", "light|dark", "of the window; default: as the desktop"},
    {OptionId::EngineFolder, "--engine-folder", "FOLDER",
     "the runtime folder, which holds the media engine and the window's library; default: "
     "\"runtime\" beside the program's own folder"},
    {OptionId::ArchiveLogs, "--archive-logs", "FOLDER",
     "pack the logs of this and the previous run into a zip file in that folder, where the newest "
     "five are kept"},
    {OptionId::Explain, "--explain", "NUMBER",
     "say what an exit status or an error of the media engine means"},
    {OptionId::Help, "--help", "", "say this; also -h"},
    {OptionId::Version, "--version", "", "say the version"},
});

} // namespace

std::span<const OptionEntry> allOptions() {
    return kOptions;
}

const OptionEntry* findOption(std::string_view name) {
    const auto* const found = std::ranges::find(kOptions, name, &OptionEntry::name);
    return found != kOptions.end() ? found : nullptr;
}

bool isOneOf(std::string_view words, std::string_view word) {
    for (std::size_t at = 0; at <= words.size();) {
        const std::size_t end = std::min(words.find('|', at), words.size());
        if (words.substr(at, end - at) == word) {
            return true;
        }
        at = end + 1;
    }
    return false;
}

std::span<const std::string_view> allUsages() {
    return kUsages;
}

} // namespace launcher

#include "launcher/window/WindowSystem.h"

#include "launcher/Texts.h"
#include "loader/LibraryLoader.h"
#include "platform/Display.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

#include <sstream>
#include <vector>

namespace launcher {
namespace {

const std::string kRemedy = ": convert with --no-window.";
const std::string kNoDisplay = "There is no display to show the window on" + kRemedy;

/// Qt's list has ';' between its entries and ':' before what an entry's plugin is told.
std::vector<std::string> wantedSystems() {
    std::vector<std::string> wanted;
    std::istringstream list(tarn::platform::environmentVariable("QT_QPA_PLATFORM").value_or(""));
    for (std::string entry; std::getline(list, entry, ';');) {
        if (!entry.empty()) {
            wanted.push_back(entry);
        }
    }
    return wanted.empty() ? tarn::platform::windowSystems() : wanted;
}

/// Qt's plugin for it, by file; there are several for Wayland, all of which answer to that name.
std::vector<std::string> pluginsFor(const std::string& system, const std::string& folder) {
    const bool isWayland = system.starts_with("wayland");
    const std::string name =
        tarn::platform::libraryFileName(isWayland ? "qwayland-*" : "q" + system);
    std::vector<std::string> plugins;
    const auto found = tarn::platform::listFolder(folder, name);
    for (const auto& entry : found.value_or(std::vector<tarn::platform::FolderEntry>())) {
        plugins.push_back(tarn::FileUtils().joinPath(folder, entry.name));
    }
    return plugins;
}

Objection checkSystem(const std::string& system, const std::string& folder) {
    if (!tarn::platform::isWindowSystemThere(system)) {
        return kNoDisplay;
    }
    const std::vector<std::string> plugins = pluginsFor(system, folder);
    if (plugins.empty()) {
        return "The window cannot be shown by " + inQuotes(system) +
               ": there is no plugin for it in " + inQuotes(folder) + kRemedy;
    }
    for (const std::string& plugin : plugins) {
        if (tarn::loader::safeLoadLibrary(tarn::platform::toWide(plugin)) == nullptr) {
            return "The window's plugin " + inQuotes(plugin) + " cannot be loaded (" +
                   tarn::platform::loadFailureText() + ")" + kRemedy;
        }
    }
    return std::nullopt;
}

} // namespace

Objection checkWindowSystem(const std::string& runtimeFolder) {
    const std::string folder = tarn::FileUtils().joinPath(runtimeFolder, "platforms");
    Objection told;
    for (const std::string& entry : wantedSystems()) {
        const Objection objection = checkSystem(entry.substr(0, entry.find(':')), folder);
        if (!objection) {
            return std::nullopt;
        }
        // Where somebody answers, but nothing here can talk to them, that is the reason.
        told = told && told != kNoDisplay ? told : objection;
    }
    return told;
}

} // namespace launcher

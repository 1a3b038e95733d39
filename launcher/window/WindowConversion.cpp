#include "launcher/window/WindowConversion.h"

#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "launcher/window/SourceListEncoder.h"
#include "launcher/window/WindowEnding.h"
#include "launcher/window/WindowSystem.h"
#include "loader/LibraryLoader.h"
#include "platform/DesktopTheme.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace launcher {
namespace {

using EntryPoint = int (*)(int argc, wchar_t** argv);

EntryPoint entryPoint = nullptr;

/// What the process ends with once the window has left it; -1: whatever it ends with by itself.
std::atomic<int> statusToLeaveWith{-1};
/// Outlives everything but the process.
std::atomic<WindowEnding*> windowEnding{nullptr};

/// The window leaves by exit(0) whatever has become of the recording.
void leaveWithOurStatus() {
    if (statusToLeaveWith > 0) {
        std::fflush(nullptr);
        std::_Exit(statusToLeaveWith);
    }
}

ExitStatus conclude(WindowEnding::Reason reason) {
    const ExitStatus status = windowEnding.load()->conclude(reason);
    statusToLeaveWith = static_cast<int>(status);
    return status;
}

void concludeAtExit() {
    conclude(WindowEnding::Reason::Left);
}

bool isDark(Theme theme) {
    return theme == Theme::Desktop ? tarn::platform::isDesktopDark() : theme == Theme::Dark;
}

int callEntryPoint(const std::array<std::string, 6>& arguments) {
    std::array<std::wstring, 6> texts;
    std::array<wchar_t*, 7> pointers{};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        texts[i] = tarn::platform::toWide(arguments[i]);
        pointers[i] = texts[i].data();
    }
    return entryPoint(static_cast<int>(arguments.size()), pointers.data());
}

} // namespace

void takeOverExitStatus() {
    std::atexit(leaveWithOurStatus);
}

Objection checkWindow(const std::string& runtimeFolder) {
    const std::string remedy = ": convert with --no-window.";
    const std::string name = tarn::platform::libraryFileName("record-converter");
    const std::string path = tarn::FileUtils().joinPath(runtimeFolder, name);
    if (!tarn::FileUtils().exists(path)) {
        return "There is no window, " + name + ", in " + inQuotes(runtimeFolder) + remedy;
    }
    const auto library = tarn::loader::safeLoadLibrary(tarn::platform::toWide(path));
    if (library == nullptr) {
        return "The window " + inQuotes(path) + " cannot be loaded (" +
               tarn::platform::loadFailureText() + ")" + remedy;
    }
    entryPoint =
        reinterpret_cast<EntryPoint>(tarn::platform::findSymbol(library, "TarnEntryPoint"));
    if (entryPoint == nullptr) {
        return inQuotes(path) + " is no window (it lacks TarnEntryPoint)" + remedy;
    }
    // The window's library has brought those along that Qt's plugins need.
    return checkWindowSystem(runtimeFolder);
}

ExitStatus convertInWindow(const Job& job, Theme theme, const std::string& program) {
    windowEnding = new WindowEnding(job);
    const std::vector<std::string> sources = windowEnding.load()->secondNames();
    if (sources.empty()) {
        return refuse(
            "The recordings can be linked neither beside themselves nor in the folder for "
            "temporary files: convert with --no-window.");
    }
    const auto list = encodeSourceList(sources);
    // Registered last, so called while the engine is still whole.
    std::atexit(concludeAtExit);
    windowEnding.load()->watch();
    const int result = callEntryPoint(
        {program, job.engineFolder, "", list, job.destination, isDark(theme) ? "2" : "1"});
    return conclude(result == 0 ? WindowEnding::Reason::Left : WindowEnding::Reason::NotShown);
}

} // namespace launcher

#include "launcher/WindowConversion.h"

#include "launcher/Say.h"
#include "launcher/SourceListEncoder.h"
#include "launcher/SourceStaging.h"
#include "launcher/Texts.h"
#include "launcher/Translations.h"
#include "loader/LibraryLoader.h"
#include "platform/Display.h"
#include "platform/Interrupt.h"
#include "platform/Library.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"
#include "zel/EngineContract.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

namespace launcher {
namespace {

using EntryPoint = int (*)(int argc, wchar_t** argv);

EntryPoint entryPoint = nullptr;

/// Outlives everything but the process: the window leaves by exit().
std::unique_ptr<SourceStaging>& staging() {
    static auto& staged = *new std::unique_ptr<SourceStaging>;
    return staged;
}

void clearStaging() {
    if (staging() != nullptr) {
        staging()->clear();
    }
}

/// The window knows nothing of Ctrl-C. The engine is asked to stop, so that it leaves nothing half
/// written, and the process ends without another word to Qt, which is at work on its own thread.
void endOnInterrupt(const std::string& engineFolder) {
    tarn::platform::catchInterrupts();
    std::thread([engineFolder] {
        while (!tarn::platform::interrupted()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        constexpr std::uint32_t kStopPatience = 700;
        const std::string path = tarn::FileUtils().joinPath(
            engineFolder, tarn::platform::libraryFileName("mediaconverter"));
        const auto engine = tarn::loader::safeLoadLibrary(tarn::platform::toWide(path));
        const auto stop = engine == nullptr
                              ? nullptr
                              : reinterpret_cast<zel::StopConversionsFunction>(
                                    tarn::platform::findSymbol(engine, "ZelStopConversions"));
        if (stop != nullptr) {
            stop(kStopPatience);
        }
        clearStaging();
        tarn::platform::leaveAtOnce(Stopped);
    }).detach();
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

Objection checkWindow(const std::string& runtimeFolder) {
    const std::string remedy = ": convert with --no-window.";
    if (!tarn::platform::hasDisplay()) {
        return "There is no display to show the window on" + remedy;
    }
    const std::string name = tarn::platform::libraryFileName("record-converter");
    const std::string path = tarn::FileUtils().joinPath(runtimeFolder, name);
    if (!tarn::FileUtils().exists(path)) {
        return "There is no window, " + name + ", in " + inQuotes(runtimeFolder) + remedy;
    }
    const auto library = tarn::loader::safeLoadLibrary(tarn::platform::toWide(path));
    if (library == nullptr) {
        return "The window " + inQuotes(path) + " can not be loaded (error " +
               std::to_string(tarn::platform::lastError()) + ")" + remedy;
    }
    entryPoint =
        reinterpret_cast<EntryPoint>(tarn::platform::findSymbol(library, "TarnEntryPoint"));
    if (entryPoint == nullptr) {
        return inQuotes(path) + " is no window (it lacks TarnEntryPoint)" + remedy;
    }
    return std::nullopt;
}

ExitStatus convertInWindow(const Job& job, Theme theme, const std::string& program) {
    std::vector<std::string> sources = job.sources;
    if (!job.deleteSources) {
        std::atexit(clearStaging);
        const std::string folder = tarn::FileUtils().directoryOfPath(job.destination);
        staging() = std::make_unique<SourceStaging>(sources, folder);
        sources = staging()->paths();
        if (sources.empty()) {
            return refuse("The recordings can be neither linked nor copied into " +
                          inQuotes(folder) + ": free space there, or convert with --no-window.");
        }
    }
    const auto list = encodeSourceList(sources);
    if (const auto* error = std::get_if<NotExpressible>(&list)) {
        return refuse(error->sentence);
    }
    placeTranslations(job.engineFolder);
    endOnInterrupt(job.engineFolder);
    const int result = callEntryPoint({program, job.engineFolder, "", std::get<std::string>(list),
                                       job.destination, theme == Theme::Dark ? "2" : "1"});
    clearStaging();
    if (result != 0) {
        say("The window could not be shown: the log says why, see record-converter --help.");
        return Failed;
    }
    return Converted;
}

} // namespace launcher

#include "launcher/Launcher.h"

#include "client/LogLocations.h"
#include "launcher/ArchiveLogs.h"
#include "launcher/Paths.h"
#include "launcher/Preflight.h"
#include "launcher/RecordingNames.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "launcher/terminal/BatchConversion.h"
#include "launcher/terminal/JsonLine.h"
#include "launcher/terminal/Narrator.h"
#include "launcher/terminal/TerminalConversion.h"
#include "launcher/usage/Help.h"
#include "launcher/usage/Meanings.h"
#include "launcher/usage/Options.h"
#include "launcher/window/WindowConversion.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "platform/Identity.h"
#include "platform/Interrupt.h"
#include "platform/Terminal.h"
#include "recordconverter/WinConverterLog.h"

#include <exception>
#include <memory>
#include <variant>

namespace launcher {
namespace {

using tarn::platform::TerminalStream;

Job makeJob(const Options& options) {
    Job job;
    for (const std::string& source : options.sources) {
        job.sources.push_back(absolutePath(source));
    }
    job.destination = options.destination.empty() ? destinationFor(job.sources.front(), "")
                                                  : absolutePath(options.destination);
    job.engineFolder =
        options.engineFolder.empty() ? defaultEngineFolder() : resolvedFolder(options.engineFolder);
    job.overwrite = options.overwrite;
    job.deleteSources = options.deleteSources;
    job.quality = options.quality;
    job.fastStart = options.fastStart;
    return job;
}

ExitStatus refuseAll(const std::string& sentence, bool isForProgram) {
    if (isForProgram) {
        JsonLine("end")
            .add("status", static_cast<int>(ExitStatus::Refused))
            .add("result", "refused")
            .add("reason", sentence)
            .write();
    }
    return refuse(sentence);
}

/// The log of a run on the terminal, or what stands in its way.
using StartedLog = std::variant<std::shared_ptr<recordconverter::ConverterLog>, std::string>;

StartedLog startLog(const Job& job, const std::string& destination) {
    tarn::platform::catchInterrupts();
    auto converterLog = std::make_shared<recordconverter::WinConverterLog>();
    converterLog->initialize(0, nullptr);
    TARN_LOG(tarn::RootLoggerLevel::Info, "record-converter " RECORD_CONVERTER_VERSION ", engine: "
                                              << job.engineFolder
                                              << ", sources: " << job.sources.size()
                                              << ", destination: " << destination);
    Objection objection = checkEngine(job.engineFolder);
    objection = objection ? objection : applyChoices(job);
    if (objection) {
        TARN_LOG(tarn::RootLoggerLevel::Error, *objection);
        tarn::RootLogger::getInstance().flush();
        return *objection;
    }
    return converterLog;
}

ExitStatus convertOnTerminal(const Job& job, bool isForProgram) {
    StartedLog log = startLog(job, job.destination);
    if (const auto* objection = std::get_if<std::string>(&log)) {
        return refuseAll(*objection, isForProgram);
    }
    Narrator narrator(isForProgram);
    TerminalRun run(std::move(std::get<0>(log)), narrator);
    return leaveTerminal(run, convertInTerminal(job, run).status);
}

ExitStatus convertEachOnTerminal(const Options& options) {
    Job job = makeJob(options);
    const std::string folder = options.folder.empty() ? "" : absolutePath(options.folder);
    if (const Objection objection = folder.empty() ? std::nullopt : checkFolder(folder)) {
        return refuseAll(*objection, options.json);
    }
    const BatchPlan plan = planBatch(job.sources, folder);
    StartedLog log = startLog(job, folder);
    if (const auto* objection = std::get_if<std::string>(&log)) {
        return refuseAll(*objection, options.json);
    }
    Narrator narrator(options.json, plan.items.size());
    TerminalRun run(std::move(std::get<0>(log)), narrator);
    return leaveTerminal(run, convertEach(plan, job, options.json, run));
}

/// The product library logs for itself, so nothing is set up here.
ExitStatus convertWithWindow(const Job& job, Theme theme) {
    takeOverExitStatus();
    tarn::platform::catchInterrupts();
    Objection objection = checkEngine(job.engineFolder);
    objection = objection ? objection : checkWindow(job.engineFolder);
    objection = objection ? objection : applyChoices(job);
    return objection ? refuse(*objection)
                     : convertInWindow(job, theme, tarn::platform::programFile());
}

ExitStatus convert(const Options& options) {
    if (options.each) {
        return convertEachOnTerminal(options);
    }
    const Job job = makeJob(options);
    if (const Objection objection = checkFiles(job)) {
        return refuseAll(*objection, options.json);
    }
    return options.window ? convertWithWindow(job, options.theme)
                          : convertOnTerminal(job, options.json);
}

ExitStatus answer(const std::string& text) {
    tarn::platform::writeTerminal(TerminalStream::Output, text);
    return ExitStatus::Complete;
}

ExitStatus explain(const std::string& number) {
    const std::string text = explanation(number);
    return text.empty() ? refuse("There is no exit status and no error " + inQuotes(number) + ".")
                        : answer(text + ".\n");
}

ExitStatus obey(const CommandLine& commandLine) {
    if (std::holds_alternative<HelpWanted>(commandLine)) {
        return answer(helpText(tarn::toolLogFolder()));
    }
    if (std::holds_alternative<VersionWanted>(commandLine)) {
        return answer(versionText());
    }
    if (const auto* explanationWanted = std::get_if<ExplanationWanted>(&commandLine)) {
        return explain(explanationWanted->number);
    }
    if (const auto* error = std::get_if<UsageError>(&commandLine)) {
        return refuseAll(error->sentence + " See record-converter --help.", error->json);
    }
    if (const auto* archive = std::get_if<ArchiveWanted>(&commandLine)) {
        return archiveLogs(absolutePath(archive->destination));
    }
    return convert(std::get<Options>(commandLine));
}

} // namespace

int runLauncher(const std::vector<std::string>& arguments) {
    try {
        const ExitStatus status = obey(parseCommandLine(
            {arguments.empty() ? arguments.begin() : arguments.begin() + 1, arguments.end()}));
        return static_cast<int>(status);
    } catch (const std::exception& error) {
        say(std::string("record-converter: an unexpected error ended the program: ") +
            error.what());
        return static_cast<int>(ExitStatus::Failed);
    }
}

} // namespace launcher

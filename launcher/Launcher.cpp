#include "launcher/Launcher.h"

#include "client/LogLocations.h"
#include "launcher/ArchiveLogs.h"
#include "launcher/Options.h"
#include "launcher/Paths.h"
#include "launcher/Preflight.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "launcher/terminal/TerminalConversion.h"
#include "launcher/window/WindowConversion.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "platform/Identity.h"
#include "platform/Interrupt.h"
#include "platform/Terminal.h"
#include "recordconverter/WinConverterLog.h"

#include <exception>
#include <memory>

namespace launcher {
namespace {

using tarn::platform::TerminalStream;

Job makeJob(const Options& options) {
    Job job;
    for (const std::string& source : options.sources) {
        job.sources.push_back(absolutePath(source));
    }
    job.destination = absolutePath(options.destination);
    job.engineFolder =
        options.engineFolder.empty() ? defaultEngineFolder() : resolvedFolder(options.engineFolder);
    job.overwrite = options.overwrite;
    job.deleteSources = options.deleteSources;
    return job;
}

ExitStatus convertOnTerminal(const Job& job) {
    tarn::platform::catchInterrupts();
    auto converterLog = std::make_shared<recordconverter::WinConverterLog>();
    converterLog->initialize(0, nullptr);
    TARN_LOG(tarn::RootLoggerLevel::Info, "record-converter " RECORD_CONVERTER_VERSION ", engine: "
                                              << job.engineFolder
                                              << ", sources: " << job.sources.size()
                                              << ", destination: " << job.destination);
    if (const Objection objection = checkEngine(job.engineFolder)) {
        TARN_LOG(tarn::RootLoggerLevel::Error, *objection);
        tarn::RootLogger::getInstance().flush();
        return refuse(*objection);
    }
    const ExitStatus status = convertInTerminal(job, converterLog);
    converterLog.reset();
    tarn::RootLogger::getInstance().flush();
    return status;
}

/// The product library logs for itself, so nothing is set up here.
ExitStatus convertWithWindow(const Job& job, Theme theme) {
    takeOverExitStatus();
    tarn::platform::catchInterrupts();
    if (const Objection objection = checkEngine(job.engineFolder)) {
        return refuse(*objection);
    }
    if (const Objection objection = checkWindow(job.engineFolder)) {
        return refuse(*objection);
    }
    return convertInWindow(job, theme, tarn::platform::programFile());
}

ExitStatus convert(const Options& options) {
    const Job job = makeJob(options);
    if (const Objection objection = checkFiles(job)) {
        return refuse(*objection);
    }
    return options.window ? convertWithWindow(job, options.theme) : convertOnTerminal(job);
}

ExitStatus obey(const CommandLine& commandLine) {
    if (std::holds_alternative<HelpWanted>(commandLine)) {
        tarn::platform::writeTerminal(TerminalStream::Output, helpText(tarn::toolLogFolder()));
        return ExitStatus::Complete;
    }
    if (std::holds_alternative<VersionWanted>(commandLine)) {
        tarn::platform::writeTerminal(TerminalStream::Output, versionText());
        return ExitStatus::Complete;
    }
    if (const auto* error = std::get_if<UsageError>(&commandLine)) {
        return refuse(error->sentence + " See record-converter --help.");
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

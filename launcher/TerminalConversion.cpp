#include "launcher/TerminalConversion.h"

#include "launcher/EngineComplaint.h"
#include "launcher/ProgressDisplay.h"
#include "launcher/Say.h"
#include "launcher/TerminalSession.h"
#include "launcher/Texts.h"
#include "logging/LogCall.h"
#include "logging/LogLocations.h"
#include "logging/RootLogger.h"
#include "platform/Interrupt.h"
#include "utils/FileUtils.h"

#include <cstdlib>

namespace launcher {
namespace {

using Result = ConversionState::Result;
using std::chrono::milliseconds;

// The desktop client passes the same two numbers; only the engine knows what they mean.
constexpr std::uint32_t kEngineParam1 = 3;
constexpr std::uint32_t kEngineParam2 = 4;

/// An interruption has to end within a second; an engine that has ended only has to wind up.
constexpr std::uint32_t kStopPatience = 700;
constexpr std::uint32_t kWindUpPatience = 5000;
constexpr milliseconds kRedrawPeriod{100};

std::uint64_t totalSize(const std::vector<std::string>& sources) {
    std::uint64_t total = 0;
    for (const std::string& source : sources) {
        total += static_cast<std::uint64_t>(
            std::max<std::int64_t>(tarn::FileUtils().getFileSize(source), 0));
    }
    return total;
}

class TerminalConversion {
public:
    TerminalConversion(const Job& job, std::shared_ptr<recordconverter::ConverterLog> converterLog)
        : mJob(job),
          // Asked before the start: on Windows a source that is open can not be deleted.
          mTotalSize(totalSize(job.sources)),
          mDestinationWasThere(tarn::FileUtils().exists(job.destination)),
          mState(std::make_shared<ConversionState>()),
          // What the session does not know it can not delete.
          mSession(std::make_unique<TerminalSession>(
              job.engineFolder, job.deleteSources ? job.sources : std::vector<std::string>(),
              job.destination, std::move(converterLog), mState)) {
        tarn::RootLogger::getInstance().registerLogger(mComplaint);
    }

    ExitStatus run() {
        mSession->addObserver(mState);
        mSession->loadEngine();
        // Should the engine take the process with it, the log says what it was at.
        tarn::RootLogger::getInstance().flush();
        mSession->startConvert(mJob.sources, mJob.destination, kEngineParam1, kEngineParam2);
        if (!mState->started()) {
            return finish(failed("The engine did not start the conversion"), kWindUpPatience);
        }
        const std::optional<ConversionState::Ending> ending = waitForEnding();
        return ending ? finish(report(*ending), kWindUpPatience) : stop();
    }

private:
    /// Nothing when the user interrupts first.
    std::optional<ConversionState::Ending> waitForEnding() {
        ProgressDisplay display(mTotalSize);
        std::optional<ConversionState::Ending> ending;
        while (!ending && !tarn::platform::interrupted()) {
            ending = mState->waitUntilSettled(kRedrawPeriod);
            display.update(mState->percent());
        }
        display.finish();
        return ending;
    }

    ExitStatus stop() {
        if (!mState->claimEnding()) {
            // The engine was faster, and is about to say so.
            return finish(report(mState->waitUntilSettled(std::chrono::hours(1))
                                     .value_or(ConversionState::Ending{Result::NothingWritten})),
                          kWindUpPatience);
        }
        TARN_LOG(tarn::RootLoggerLevel::Info, "The conversion is interrupted.");
        if (!mSession->stopConversions(kStopPatience)) {
            discardPartialDestination();
        }
        say("Stopped: nothing was converted, the recordings are as they were.");
        return finish(Stopped, 0);
    }

    /// An engine that can not be stopped writes on until the process ends, which is next. Claiming
    /// the ending has made sure that it does not count as complete any more.
    void discardPartialDestination() {
        const tarn::FileUtils files;
        if (!mDestinationWasThere && files.exists(mJob.destination) &&
            !files.remove(mJob.destination)) {
            say("The unfinished " + inQuotes(mJob.destination) + " can not be removed: delete it.");
        }
    }

    ExitStatus report(const ConversionState::Ending& ending) {
        switch (ending.result) {
            case Result::Complete:
                say("The recording is ready: " + inQuotes(mJob.destination));
                return Converted;
            case Result::NothingWritten:
                return failed("The engine wrote no destination");
            case Result::Error:
                return failed("The engine failed with its error " +
                              std::to_string(ending.errorCode));
        }
        return Failed;
    }

    ExitStatus failed(const std::string& what) {
        tarn::RootLogger::getInstance().flush();
        const std::string complaint = mComplaint->text();
        say("The conversion failed, the recordings are as they were. " + what +
            (complaint.empty() ? "." : ": " + complaint));
        say("The log says more: " + inQuotes(tarn::FileUtils().joinPath(
                                        tarn::toolLogFolder(), tarn::currentLogFileName())));
        return Failed;
    }

    /// Ends the engine's threads before its code and our sink go away.
    ExitStatus finish(ExitStatus status, std::uint32_t patience) {
        const bool quiet = mSession->stopConversions(patience);
        if (quiet) {
            mSession.reset();
        }
        TARN_LOG(tarn::RootLoggerLevel::Info, "The conversion ends with status " << int(status));
        if (!quiet) {
            tarn::RootLogger::getInstance().flush();
            // Its threads may still call us, so the session stays. The engine's own exit handlers
            // run, and may remove what it has not finished.
            static_cast<void>(mSession.release());
            std::exit(status); // NOLINT(concurrency-mt-unsafe): no other thread of ours ends it
        }
        return status;
    }

    const Job& mJob;
    std::uint64_t mTotalSize;
    bool mDestinationWasThere;
    std::shared_ptr<EngineComplaint> mComplaint = std::make_shared<EngineComplaint>();
    std::shared_ptr<ConversionState> mState;
    std::unique_ptr<TerminalSession> mSession;
};

} // namespace

ExitStatus convertInTerminal(const Job& job,
                             const std::shared_ptr<recordconverter::ConverterLog>& converterLog) {
    return TerminalConversion(job, converterLog).run();
}

} // namespace launcher

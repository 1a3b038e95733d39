#include "launcher/terminal/TerminalConversion.h"

#include "launcher/EngineExports.h"
#include "launcher/JobFiles.h"
#include "launcher/Report.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "launcher/terminal/EngineComplaint.h"
#include "launcher/terminal/ProgressDisplay.h"
#include "launcher/terminal/TerminalSession.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "platform/Interrupt.h"

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

/// The engine's last words. Its lines begin with the number of the error, which is told already.
std::string withoutNumber(const std::string& complaint, std::int32_t code) {
    const std::string number = "Error " + std::to_string(code) + ": ";
    return complaint.starts_with(number) ? complaint.substr(number.size()) : complaint;
}

class TerminalConversion {
public:
    TerminalConversion(const Job& job, std::shared_ptr<recordconverter::ConverterLog> converterLog)
        : mJob(job),
          mFiles(job),
          mEngine(job.engineFolder),
          mState(std::make_shared<ConversionState>()),
          mSession(std::make_unique<TerminalSession>(job.engineFolder, job.destination,
                                                     std::move(converterLog), mState)) {
        tarn::RootLogger::getInstance().registerLogger(mComplaint);
    }

    ExitStatus run() {
        mSession->addObserver(mState);
        mSession->loadEngine();
        mEngine.acceptLosses();
        // Should the engine take the process with it, the log says what it was at.
        tarn::RootLogger::getInstance().flush();
        mSession->startConvert(mJob.sources, mJob.destination, kEngineParam1, kEngineParam2);
        if (!mState->started()) {
            return finish(failed("The engine did not start the conversion"));
        }
        const std::optional<ConversionState::Ending> ending = waitForEnding();
        return ending ? windUp(*ending) : stop();
    }

private:
    /// Nothing when the user interrupts first.
    std::optional<ConversionState::Ending> waitForEnding() {
        ProgressDisplay display(mFiles.totalSize());
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
            return windUp(mState->waitUntilSettled(std::chrono::hours(1))
                              .value_or(ConversionState::Ending{Result::Error}));
        }
        TARN_LOG(tarn::RootLoggerLevel::Info, "The conversion is interrupted.");
        const bool isStopped = mSession->stopConversions(kStopPatience);
        const auto ending = mEngine.ending();
        if (ending && ending->code == zel::kZelSuccess) {
            return windUp({Result::Complete}); // it had just ended
        }
        const ExitStatus status = reportStopped();
        if (!isStopped && mFiles.hasDestinationChanged()) {
            // Whose work it is cannot be told, so it stays.
            say(inQuotes(mJob.destination) + " may be unfinished: look at it, or delete it.");
        }
        return finish(status);
    }

    /// Waits for the engine's threads first: on Windows an open source cannot be deleted.
    ExitStatus windUp(const ConversionState::Ending& ending) {
        mSession->stopConversions(kWindUpPatience);
        tarn::RootLogger::getInstance().flush();
        return finish(
            ending.result == Result::Complete
                ? reportComplete(mJob, mFiles, mEngine)
                : failed("The engine failed with its error " + std::to_string(ending.errorCode),
                         ending.errorCode));
    }

    ExitStatus failed(const std::string& what, std::int32_t code = 0) {
        tarn::RootLogger::getInstance().flush();
        return reportFailure(what, withoutNumber(mComplaint->text(), code));
    }

    /// Ends the engine's threads before its code and our sink go away.
    ExitStatus finish(ExitStatus status) {
        const bool quiet = mSession->stopConversions(0);
        if (quiet) {
            mSession.reset();
        }
        TARN_LOG(tarn::RootLoggerLevel::Info,
                 "The conversion ends with status " << static_cast<int>(status));
        if (!quiet) {
            tarn::RootLogger::getInstance().flush();
            // Its threads may still call us, so the session stays. The engine's own exit handlers
            // run, and may remove what it has not finished.
            static_cast<void>(mSession.release());
            // No other thread of ours ends it. NOLINTNEXTLINE(concurrency-mt-unsafe)
            std::exit(static_cast<int>(status));
        }
        return status;
    }

    const Job& mJob;
    JobFiles mFiles;
    EngineExports mEngine;
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

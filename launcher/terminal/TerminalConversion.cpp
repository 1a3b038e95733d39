#include "launcher/terminal/TerminalConversion.h"

#include "launcher/EngineExports.h"
#include "launcher/JobFiles.h"
#include "launcher/Report.h"
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
    TerminalConversion(const Job& job, TerminalRun& run)
        : mJob(job),
          mRun(run),
          mFiles(job),
          mEngine(job.engineFolder),
          mState(std::make_shared<ConversionState>()),
          mSession(std::make_unique<TerminalSession>(job.engineFolder, job.destination,
                                                     run.converterLog, mState)) {}

    Outcome run() {
        mSession->addObserver(mState);
        mSession->loadEngine();
        mEngine.acceptLosses();
        // Should the engine take the process with it, the log says what it was at.
        tarn::RootLogger::getInstance().flush();
        mRun.complaint->forget();
        mRun.narrator.begin(mJob, mFiles.totalSize());
        mSession->startConvert(mJob.sources, mJob.destination, kEngineParam1, kEngineParam2);
        Outcome outcome;
        if (!mState->started()) {
            tarn::RootLogger::getInstance().flush();
            outcome = failed("The engine did not start the conversion",
                             withoutNumber(mRun.complaint->text(), 0));
        } else {
            const std::optional<ConversionState::Ending> ending = waitForEnding();
            outcome = ending ? windUp(*ending) : stop();
        }
        leaveEngine(outcome);
        mRun.narrator.end(mJob, outcome);
        return outcome;
    }

private:
    /// Nothing when the user interrupts first.
    std::optional<ConversionState::Ending> waitForEnding() {
        std::optional<ConversionState::Ending> ending;
        while (!ending && !tarn::platform::interrupted()) {
            ending = mState->waitUntilSettled(kRedrawPeriod);
            mRun.narrator.progress(mState->percent());
        }
        return ending;
    }

    Outcome stop() {
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
        return {.status = ExitStatus::Stopped,
                .mayBeUnfinished = !isStopped && mFiles.hasDestinationChanged()};
    }

    /// Waits for the engine's threads first: on Windows an open source cannot be deleted.
    Outcome windUp(const ConversionState::Ending& ending) {
        mSession->stopConversions(kWindUpPatience);
        tarn::RootLogger::getInstance().flush();
        return ending.result == Result::Complete
                   ? completed(mJob, mFiles, mEngine)
                   : engineFailed(ending.errorCode, reasonOf(ending.errorCode));
    }

    /// From an engine that does not say it, the last Error line of its trace.
    std::string reasonOf(std::int32_t code) const {
        const auto told = mEngine.ending();
        return told && told->code == code ? told->reason
                                          : withoutNumber(mRun.complaint->text(), code);
    }

    /// Ends the engine's threads before its code and our sink go away.
    void leaveEngine(const Outcome& outcome) {
        if (mSession->stopConversions(0)) {
            mSession.reset();
        } else {
            // Its threads may still call us, so the session stays.
            mRun.isEngineQuiet = false;
            static_cast<void>(mSession.release());
        }
        TARN_LOG(tarn::RootLoggerLevel::Info,
                 "The conversion ends with status " << static_cast<int>(outcome.status));
    }

    const Job& mJob;
    TerminalRun& mRun;
    JobFiles mFiles;
    EngineExports mEngine;
    std::shared_ptr<ConversionState> mState;
    std::unique_ptr<TerminalSession> mSession;
};

} // namespace

TerminalRun::TerminalRun(std::shared_ptr<recordconverter::ConverterLog> log, Narrator& teller)
    : converterLog(std::move(log)),
      complaint(std::make_shared<EngineComplaint>()),
      narrator(teller) {
    tarn::RootLogger::getInstance().registerLogger(complaint);
}

Outcome convertInTerminal(const Job& job, TerminalRun& run) {
    return TerminalConversion(job, run).run();
}

ExitStatus leaveTerminal(TerminalRun& run, ExitStatus status) {
    tarn::RootLogger::getInstance().flush();
    if (!run.isEngineQuiet) {
        // The engine's own exit handlers run, and may remove what it has not finished. No other
        // thread of ours ends the process. NOLINTNEXTLINE(concurrency-mt-unsafe)
        std::exit(static_cast<int>(status));
    }
    run.converterLog.reset();
    tarn::RootLogger::getInstance().flush();
    return status;
}

} // namespace launcher

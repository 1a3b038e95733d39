#include "launcher/Report.h"

#include "client/LogLocations.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "log/LogCall.h"
#include "logging/file/RunSlot.h"
#include "platform/Identity.h"
#include "utils/FileUtils.h"

namespace launcher {
namespace {

std::string whyItFailed(const Outcome& outcome) {
    return outcome.what + (outcome.reason.empty() ? "." : ": " + outcome.reason);
}

/// Other programs at work write logs beside it. This one's last line is this process's.
std::string logOfThisRun() {
    const tarn::FileUtils files;
    const std::string folder = tarn::toolLogFolder();
    const std::string mark = "[" + std::to_string(tarn::platform::processId()) + ":";
    for (const std::string& path :
         tarn::existingLogFiles(files, folder, tarn::currentLogFileName())) {
        if (files.readLastLine(path).find(mark) != std::string::npos) {
            return path;
        }
    }
    return files.joinPath(folder, tarn::currentLogFileName());
}

/// Whose work it is cannot be told, so it stays.
std::string unfinishedText(const Job& job) {
    return inQuotes(job.destination) + " may be unfinished: look at it, or delete it.";
}

} // namespace

Outcome completed(const Job& job, const JobFiles& files, const EngineExports& engine) {
    if (!files.isDestinationWritten()) {
        return failed("The engine wrote no destination");
    }
    Outcome outcome{.losses = engine.losses()};
    if (!outcome.losses.empty()) {
        TARN_LOG(tarn::RootLoggerLevel::Warn,
                 "The destination is not complete: " << outcome.losses);
        outcome.status = ExitStatus::Incomplete;
    } else if (job.deleteSources) {
        outcome.notDeleted = files.removeSources();
    }
    for (const std::string& source : outcome.notDeleted) {
        TARN_LOG(tarn::RootLoggerLevel::Error, "Not deleted: " << source);
        outcome.status = ExitStatus::Failed;
    }
    return outcome;
}

Outcome failed(const std::string& what, const std::string& reason, std::int32_t error) {
    TARN_LOG(tarn::RootLoggerLevel::Error, what);
    return {.status = ExitStatus::Failed, .what = what, .reason = reason, .error = error};
}

Outcome engineFailed(std::int32_t error, const std::string& reason) {
    return failed("The engine failed with its error " + std::to_string(error), reason, error);
}

void report(const Job& job, const Outcome& outcome) {
    if (outcome.status == ExitStatus::Refused) {
        refuse(outcome.what);
    } else if (outcome.status == ExitStatus::Stopped) {
        say("Stopped: nothing was converted, the recordings are as they were.");
        if (outcome.mayBeUnfinished) {
            say(unfinishedText(job));
        }
    } else if (outcome.status == ExitStatus::Incomplete) {
        say(inQuotes(job.destination) + " is not complete: " + outcome.losses +
            "; the recording is kept.");
    } else if (!outcome.what.empty()) {
        say("The conversion failed, the recordings are as they were. " + whyItFailed(outcome));
        sayWhereTheLogIs();
    } else {
        say("The recording is ready: " + inQuotes(job.destination));
        for (const std::string& source : outcome.notDeleted) {
            say("The recording cannot be deleted: " + source);
        }
    }
}

void sayWhereTheLogIs() {
    say("The log says more: " + inQuotes(logOfThisRun()));
}

const char* resultName(ExitStatus status) {
    switch (status) {
        case ExitStatus::Complete:
            return "complete";
        case ExitStatus::Failed:
            return "failed";
        case ExitStatus::Refused:
            return "refused";
        case ExitStatus::Incomplete:
            return "incomplete";
        case ExitStatus::Stopped:
            break;
    }
    return "stopped";
}

std::string resultText(const Job& job, const Outcome& outcome) {
    const std::string destination = inQuotes(job.destination);
    switch (outcome.status) {
        case ExitStatus::Refused:
            return "not begun: " + outcome.what;
        case ExitStatus::Stopped:
            return "stopped" + (outcome.mayBeUnfinished ? ": " + unfinishedText(job) : ".");
        case ExitStatus::Incomplete:
            return "not complete: " + destination + ": " + outcome.losses;
        case ExitStatus::Complete:
        case ExitStatus::Failed:
            break;
    }
    if (!outcome.what.empty()) {
        return "failed: " + whyItFailed(outcome);
    }
    return "ready: " + destination +
           (outcome.notDeleted.empty() ? "" : ", but it cannot be deleted");
}

} // namespace launcher

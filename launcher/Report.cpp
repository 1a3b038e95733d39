#include "launcher/Report.h"

#include "client/LogLocations.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "log/LogCall.h"
#include "utils/FileUtils.h"

namespace launcher {

ExitStatus reportComplete(const Job& job, const JobFiles& files, const EngineExports& engine) {
    const std::string destination = inQuotes(job.destination);
    if (!files.isDestinationWritten()) {
        return reportFailure("The engine wrote no destination", "");
    }
    const std::string losses = engine.losses();
    if (!losses.empty()) {
        TARN_LOG(tarn::RootLoggerLevel::Warn, "The destination is not complete: " << losses);
        say(destination + " is not complete: " + losses + "; the recording is kept.");
        return ExitStatus::Incomplete;
    }
    say("The recording is ready: " + destination);
    if (!job.deleteSources) {
        return ExitStatus::Complete;
    }
    const std::vector<std::string> left = files.removeSources();
    for (const std::string& source : left) {
        TARN_LOG(tarn::RootLoggerLevel::Error, "Not deleted: " << source);
        say("The recording cannot be deleted: " + source);
    }
    return left.empty() ? ExitStatus::Complete : ExitStatus::Failed;
}

ExitStatus reportFailure(const std::string& what, const std::string& reason) {
    TARN_LOG(tarn::RootLoggerLevel::Error, what);
    say("The conversion failed, the recordings are as they were. " + what +
        (reason.empty() ? "." : ": " + reason));
    say("The log says more: " +
        inQuotes(tarn::FileUtils().joinPath(tarn::toolLogFolder(), tarn::currentLogFileName())));
    return ExitStatus::Failed;
}

ExitStatus reportStopped() {
    say("Stopped: nothing was converted, the recordings are as they were.");
    return ExitStatus::Stopped;
}

} // namespace launcher

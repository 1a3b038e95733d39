#include "launcher/window/WindowEnding.h"

#include "launcher/Report.h"
#include "launcher/Say.h"
#include "platform/Interrupt.h"
#include "utils/FileUtils.h"

#include <chrono>
#include <thread>

namespace launcher {
namespace {

constexpr std::chrono::milliseconds kLookPeriod{100};
constexpr std::uint32_t kWindowStopPatience = 700;

} // namespace

WindowEnding::WindowEnding(const Job& job)
    : mJob(job),
      mFiles(job),
      mEngine(job.engineFolder),
      mStaging(job.sources, tarn::FileUtils().directoryOfPath(job.destination)) {
    mEngine.acceptLosses();
}

void WindowEnding::watch() {
    mTranslations.emplace(mJob.engineFolder);
    std::thread([this] {
        while (!tarn::platform::interrupted()) {
            look();
            std::this_thread::sleep_for(kLookPeriod);
        }
        endInterrupted();
    }).detach();
}

void WindowEnding::look() {
    const std::lock_guard lock(mMutex);
    if (mStatus) {
        return;
    }
    const auto ending = mEngine.ending();
    if (isComplete(false)) {
        settle(completed(mJob, mFiles, mEngine));
    } else if (ending && ending->code > zel::kZelSuccess) {
        settle(engineFailed(ending->code, inUsersWords(ending->reason)));
    }
    if (mStatus) {
        mStaging.clear();
    }
}

void WindowEnding::settle(const Outcome& outcome) {
    report(mJob, outcome);
    mStatus = outcome.status;
}

/// With the sources under the names that the user gave.
std::string WindowEnding::inUsersWords(std::string text) const {
    for (std::size_t i = 0; i < mStaging.paths().size(); ++i) {
        const std::string& lent = mStaging.paths()[i];
        for (std::size_t at = 0; (at = text.find(lent, at)) != std::string::npos;
             at += mJob.sources[i].size()) {
            text.replace(at, lent.size(), mJob.sources[i]);
        }
    }
    return text;
}

/// Until it is over, the session has still to delete the second names.
bool WindowEnding::isComplete(bool isOver) const {
    const auto ending = mEngine.ending();
    if (!ending) {
        return mStaging.areGone();
    }
    return ending->code == zel::kZelSuccess && (isOver || mStaging.areGone());
}

ExitStatus WindowEnding::conclude(Reason reason) {
    look();
    mEngine.stop(kWindowStopPatience);
    look();
    const std::lock_guard lock(mMutex);
    if (!mStatus) {
        settleUnended(reason);
    }
    mStaging.clear();
    mTranslations.reset();
    return *mStatus;
}

void WindowEnding::settleUnended(Reason reason) {
    if (isComplete(true)) {
        settle(completed(mJob, mFiles, mEngine));
    } else if (reason == Reason::NotShown) {
        say("The window could not be shown: the log says why, see record-converter --help.");
        mStatus = ExitStatus::Failed;
    } else if (reason == Reason::Interrupted || mEngine.ending()) {
        // An engine that tells how it ended did not fail, so it was at work.
        settle({.status = ExitStatus::Stopped});
    } else {
        settle(failed("It was stopped, or the engine failed"));
    }
}

/// The window knows nothing of Ctrl-C, and its thread is at work: the process ends without another
/// word to it.
void WindowEnding::endInterrupted() {
    tarn::platform::leaveAtOnce(static_cast<int>(conclude(Reason::Interrupted)));
}

} // namespace launcher

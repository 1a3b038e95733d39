#pragma once

#include "launcher/EngineExports.h"
#include "launcher/ExitStatus.h"
#include "launcher/JobFiles.h"
#include "launcher/Outcome.h"
#include "launcher/Preflight.h"
#include "launcher/window/SourceStaging.h"
#include "launcher/window/Translations.h"

#include <mutex>
#include <optional>

namespace launcher {

/// Finds out how a conversion in the window ends, which the window tells nobody, and says it as the
/// terminal's mode does. The session deletes the second names of the sources when its engine
/// reports the end; our own engine tells how it ended, too. Any thread; lives as long as the
/// process.
class WindowEnding {
public:
    /// Before the window is shown. Makes the second names.
    explicit WindowEnding(const Job& job);

    /// Empty when they could not be made.
    const std::vector<std::string>& secondNames() const { return mStaging.paths(); }

    /// Lends the translations, and starts a thread that says the ending when it comes, and ends the
    /// process when the user interrupts it.
    void watch();

    enum class Reason { Left, Interrupted, NotShown };
    /// The window is over, or must be. Stops what still runs, removes the second names and
    /// the translations, and returns the process's status, the same for all callers.
    ExitStatus conclude(Reason reason);

private:
    void look();
    bool isComplete(bool isOver) const;
    std::string inUsersWords(std::string text) const;
    void settle(const Outcome& outcome);
    void settleUnended(Reason reason);
    [[noreturn]] void endInterrupted();

    const Job mJob;
    const JobFiles mFiles;
    const EngineExports mEngine;
    std::mutex mMutex; ///< guards what follows
    SourceStaging mStaging;
    std::optional<Translations> mTranslations;
    std::optional<ExitStatus> mStatus;
};

} // namespace launcher

#include "launcher/terminal/Narrator.h"

#include "launcher/Report.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "launcher/terminal/JsonLine.h"

namespace launcher {

void Narrator::begin(const Job& job, std::uint64_t bytes) {
    mPercent = 0;
    if (!mIsForProgram) {
        const std::string label =
            mCount > 0 ? std::to_string(mEnded + 1) + "/" + std::to_string(mCount) + " " : "";
        mDisplay.emplace(bytes, label);
        return;
    }
    JsonLine line("start");
    line.add("sources", job.sources).add("destination", job.destination);
    if (mCount > 0) {
        line.add("number", static_cast<std::int64_t>(mEnded + 1))
            .add("count", static_cast<std::int64_t>(mCount));
    }
    line.write();
}

void Narrator::progress(float percent) {
    if (mDisplay) {
        mDisplay->update(percent);
    } else if (static_cast<int>(percent) > mPercent) {
        mPercent = static_cast<int>(percent);
        JsonLine("progress").add("percent", mPercent).write();
    }
}

void Narrator::end(const Job& job, const Outcome& outcome) {
    if (mDisplay) {
        mDisplay->finish();
        mDisplay.reset();
    }
    ++mEnded;
    if (mIsForProgram) {
        endForProgram(job, outcome);
    }
    if (mCount == 0) {
        report(job, outcome);
    } else {
        say(std::to_string(mEnded) + "/" + std::to_string(mCount) + " " +
            inQuotes(job.sources.front()) + " " + resultText(job, outcome));
    }
}

void Narrator::endForProgram(const Job& job, const Outcome& outcome) const {
    if (!outcome.losses.empty()) {
        JsonLine("losses").add("text", outcome.losses).write();
    }
    JsonLine line("end");
    line.add("status", static_cast<int>(outcome.status))
        .add("result", resultName(outcome.status))
        .add("sources", job.sources)
        .add("destination", job.destination);
    if (outcome.error != 0) {
        line.add("error", outcome.error);
    }
    if (!outcome.what.empty()) {
        line.add("reason", outcome.reason.empty() ? outcome.what : outcome.reason);
    }
    if (!outcome.notDeleted.empty()) {
        line.add("notDeleted", outcome.notDeleted);
    }
    line.write();
}

} // namespace launcher

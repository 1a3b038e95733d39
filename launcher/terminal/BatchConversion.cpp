#include "launcher/terminal/BatchConversion.h"

#include "launcher/Report.h"
#include "launcher/Say.h"
#include "launcher/Texts.h"
#include "launcher/terminal/JsonLine.h"
#include "log/LogCall.h"
#include "platform/Interrupt.h"

#include <algorithm>
#include <array>

namespace launcher {
namespace {

struct Kind {
    ExitStatus status;
    const char* words; ///< of the summary
};

/// From the best to the worst.
constexpr std::array<Kind, 5> kKinds{{
    {ExitStatus::Complete, "ready"},
    {ExitStatus::Incomplete, "not complete"},
    {ExitStatus::Refused, "refused"},
    {ExitStatus::Failed, "failed"},
    {ExitStatus::Stopped, "stopped"},
}};

class BatchConversion {
public:
    BatchConversion(const BatchPlan& plan, const Job& model, TerminalRun& run)
        : mPlan(plan), mModel(model), mRun(run) {
        for (const BatchItem& item : plan.items) {
            mModel.spared.push_back(item.source);
        }
    }

    ExitStatus convertAll(bool isForProgram) {
        std::size_t next = 0;
        while (next < mPlan.items.size() && !tarn::platform::interrupted()) {
            const ExitStatus status = convert(mPlan.items[next++]);
            const auto* const kind = std::ranges::find(kKinds, status, &Kind::status);
            ++mCounts[static_cast<std::size_t>(kind - kKinds.begin())];
        }
        std::vector<std::string> notBegun;
        for (; next < mPlan.items.size(); ++next) {
            notBegun.push_back(mPlan.items[next].source);
            say("not begun: " + inQuotes(notBegun.back()));
        }
        const ExitStatus status = notBegun.empty() ? worst() : ExitStatus::Stopped;
        if (isForProgram) {
            sumUpForProgram(status, notBegun);
        }
        sumUp(notBegun.size());
        TARN_LOG(tarn::RootLoggerLevel::Info, "The run ends with status "
                                                  << static_cast<int>(status)
                                                  << ", sources: " << mPlan.items.size()
                                                  << ", not begun: " << notBegun.size());
        return status;
    }

private:
    ExitStatus convert(const BatchItem& item) {
        Job job = mModel;
        job.sources = {item.source};
        job.destination = item.destination;
        const Objection objection =
            item.objection.empty() ? checkFiles(job) : Objection(item.objection);
        Outcome outcome{.status = ExitStatus::Refused, .what = objection.value_or("")};
        if (objection) {
            mRun.narrator.end(job, outcome);
        } else {
            outcome = convertInTerminal(job, mRun);
            mModel.spared.push_back(item.destination);
        }
        return outcome.status;
    }

    ExitStatus worst() const {
        for (std::size_t i = kKinds.size(); i-- > 1;) {
            if (mCounts[i] > 0) {
                return kKinds[i].status;
            }
        }
        return ExitStatus::Complete;
    }

    void sumUp(std::size_t notBegun) const {
        std::string text = std::to_string(mPlan.items.size()) +
                           (mPlan.items.size() == 1 ? " recording: " : " recordings: ");
        const char* between = "";
        const auto tell = [&](std::size_t count, const std::string& what) {
            if (count > 0) {
                text += between + std::to_string(count) + " " + what;
                between = ", ";
            }
        };
        for (std::size_t i = 0; i < kKinds.size(); ++i) {
            tell(mCounts[i], kKinds[i].words);
        }
        tell(notBegun, "not begun");
        if (mPlan.items.empty()) {
            text = "Nothing to convert";
            between = ", ";
        }
        tell(mPlan.leftOut.size(), "left out as .mp4 already");
        say(text + ".");
        if (worst() == ExitStatus::Failed) {
            sayWhereTheLogIs();
        }
    }

    void sumUpForProgram(ExitStatus status, const std::vector<std::string>& notBegun) const {
        JsonLine line("summary");
        line.add("status", static_cast<int>(status));
        for (std::size_t i = 0; i < kKinds.size(); ++i) {
            line.add(resultName(kKinds[i].status), static_cast<std::int64_t>(mCounts[i]));
        }
        line.add("notBegun", notBegun).add("leftOut", mPlan.leftOut).write();
    }

    const BatchPlan& mPlan;
    Job mModel;
    TerminalRun& mRun;
    std::array<std::size_t, kKinds.size()> mCounts{};
};

} // namespace

ExitStatus convertEach(const BatchPlan& plan, const Job& model, bool isForProgram,
                       TerminalRun& run) {
    return BatchConversion(plan, model, run).convertAll(isForProgram);
}

} // namespace launcher

// A process that is killed, at every call that changes a file and at any moment between.

#include "faults/FaultFixture.h"

#include <random>
#include <thread>

namespace e2e {
namespace {

constexpr int kKilled = 128 + 9;

class Kill : public FaultFixture {
protected:
    /// What is left over is enough for another run to end the job.
    void expectTheNextRunToEndTheJob() {
        const bool isConverted = isDestinationWhole();
        ASSERT_TRUE(isConverted || isSourceWhole()) << "lost";
        const bool isEnded = isConverted && !exists(mSource);
        EXPECT_THAT(convert().status, ::testing::AnyOf(0, isEnded ? 2 : 0));
        EXPECT_FALSE(exists(mSource));
        EXPECT_TRUE(isDestinationWhole());
        expectTidy();
    }
};

TEST_F(Kill, BeforeAnyCallLosesNothingAndTheNextRunEndsTheJob) {
    for (const std::string point :
         {"open .part 1", "write .part 1", "write .part 2", "write .part 6", "fsync .part 1",
          "close .part 1", "read .part 1", "read .part 2", "rename .part 1", "unlink meeting.mkv 1",
          "write current_log.txt 2"}) {
        SCOPED_TRACE(point);
        startAgain();
        EXPECT_EQ(convert(point + " 0 kill").status, kKilled);
        EXPECT_TRUE(isSourceWhole()) << "nothing was deleted before the kill";
        expectTheNextRunToEndTheJob();
    }
}

TEST_F(Kill, AtFiftyRandomMomentsLosesNothingAndTheNextRunEndsTheJob) {
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(convert().status, 0);
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - begin);
    std::mt19937 random(std::random_device{}()); // NOLINT: every run looks at other moments
    std::int64_t longest = whole.count();
    for (int killed = 0; killed < FAULTS_KILLS;) {
        startAgain();
        const std::chrono::microseconds delay(
            std::uniform_int_distribution<std::int64_t>(0, longest)(random));
        SCOPED_TRACE("after " + std::to_string(delay.count()) + " us");
        Process process(faulty({}, {"--delete-sources", mSource, mDestination}));
        std::this_thread::sleep_for(delay); // not a wait for something: the moment is the test
        process.kill();
        if (process.wait() == kKilled) {
            ++killed;
        } else {
            longest = delay.count(); // this run was at its end before; the first one was slow
        }
        expectTheNextRunToEndTheJob();
    }
}

} // namespace
} // namespace e2e

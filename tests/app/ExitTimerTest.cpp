#include "app/RunFixture.h"

#include <chrono>

namespace recordconverter::app::test {

TEST_F(Run, NobodyActsOnEndsAfterAMinute) {
    const auto begin = std::chrono::steady_clock::now();
    Process finished(scripted("progress 100\nprogress 100\n", {}, "finished"));
    // Errors and ends without end: the timer's two starts meet again and again.
    std::string script;
    for (int index = 0; index < 200; ++index) {
        script += "error 1\nprogress 100\n";
    }
    Process failed(scripted(script, {}, "failed"));
    EXPECT_EQ(finished.wait().value_or(-1), 0);
    EXPECT_EQ(failed.wait().value_or(-1), 0);
    const auto passed = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(passed, std::chrono::seconds(60));
    EXPECT_LE(passed, std::chrono::seconds(75));
    EXPECT_THAT(log().back(), testing::HasSubstr(":94 onExitTimer::exit timer timeout"));
}

} // namespace recordconverter::app::test

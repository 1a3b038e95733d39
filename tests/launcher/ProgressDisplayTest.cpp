#include "launcher/terminal/ProgressDisplay.h"

#include <gtest/gtest.h>

namespace launcher {

using std::chrono::milliseconds;

TEST(ProgressLine, ShowsPercentSpeedAndTimeLeftAsFarAsTheyAreKnownAndFit) {
    EXPECT_EQ(progressLine(50, milliseconds(4000), 100'000'000, 80),
              "[####################....................]  50 %  12.5 MB/s  0:04 left");
    EXPECT_EQ(progressLine(100, milliseconds(61000), 61'000'000, 40),
              "[###########] 100 %  1.0 MB/s  0:00 left");
    EXPECT_EQ(progressLine(1, milliseconds(120'000), 0, 80).substr(42),
              "   1 %  0.0 MB/s  3:18:00 left");
    EXPECT_EQ(progressLine(0, milliseconds(5000), 1000, 16), "[........]   0 %");
    EXPECT_EQ(progressLine(50, milliseconds(0), 1000, 14), "[###...]  50 %");
    for (std::size_t width = 0; width < 100; ++width) {
        EXPECT_LE(progressLine(33.3F, milliseconds(1), 1'000'000'000'000, int(width)).size(),
                  width);
    }
}

} // namespace launcher

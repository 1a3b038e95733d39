// Everything that the logger can be asked for, by many threads at once.

#include "logging/FileLogger.h"
#include "logging/LogCall.h"
#include "logging/RootLogger.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <charconv>
#include <fstream>
#include <thread>
#include <vector>

namespace tarn {
namespace {

constexpr int kThreads = 16;
constexpr int kLinesOfThread = HAMMER_LINES / kThreads;
constexpr std::string_view kEnd = "no line comes after this one";
constexpr std::string_view kTail = " end of the line";

/// Follows the lines of each thread: each comes once, in order, whole and masked.
class LineFollower {
public:
    void follow(std::string_view line) {
        const std::size_t begin = line.find("::T");
        if (begin == std::string_view::npos) {
            return; // the logger's own
        }
        std::string_view message = line.substr(begin + 3);
        const int thread = number(message);
        message.remove_prefix(message.find('L') + 1);
        const int sequence = number(message);
        const bool isWhole = message.ends_with(kTail);
        const bool isMasked = message.contains(" ******** ") && !message.contains("hidden");
        auto& next = mNext[static_cast<std::size_t>(thread) % kThreads];
        mFaults += isWhole && isMasked && (sequence == next || next == kUnknown) ? 0 : 1;
        next = sequence + 1;
        ++mCount;
    }
    int faults() const { return mFaults; }
    int count() const { return mCount; }
    /// Any line may be a thread's first: for sinks that come late.
    void startAnywhere() { mNext.fill(kUnknown); }

private:
    static constexpr int kUnknown = -1;
    static int number(std::string_view text) {
        int value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }
    std::array<int, kThreads> mNext{};
    int mFaults = 0;
    int mCount = 0;
};

class FollowingSink : public ILogger {
public:
    explicit FollowingSink(bool isLate) {
        if (isLate) {
            follower.startAnywhere();
        }
    }
    void log(const std::string& line, const LogComponents& components) override {
        follower.follow(line);
        isAtEnd = isAtEnd || components.message == kEnd;
    }
    void clearLogs() override {}
    void close() override {}
    void flush() override {}

    LineFollower follower;
    std::atomic<bool> isAtEnd{false};
};

void writeLines(int thread) {
    for (int sequence = 0; sequence < kLinesOfThread; ++sequence) {
        TARN_LOG(RootLoggerLevel::Info,
                 "T" << thread << " L" << sequence << " hidden-from-the-start" << kTail);
        if (sequence % 5000 == 4999) {
            RootLogger::getInstance().flush(); // also keeps the queue from growing without end
        }
    }
}

/// Keeps what a logger puts aside, which would else make room for the next.
class KeepingFiles : public FileUtils {
public:
    bool renameWithMessage(const std::string& from, const std::string& to,
                           std::string* reason) const override {
        parts.push_back(to + std::to_string(parts.size()));
        return FileUtils::renameWithMessage(from, parts.back(), reason);
    }
    mutable std::vector<std::string> parts;
};

TEST(RootLoggerHammer, WritesEveryLineOnceWholeInOrderAndMaskedWhateverElseIsGoingOn) {
    const testing::TemporaryFolder folder;
    const auto files = std::make_shared<KeepingFiles>();
    const auto fileLogger = std::make_shared<FileLogger>(folder.path(), 1, files, nullptr, true);
    fileLogger->start(true);
    RootLogger& logger = RootLogger::getInstance();
    const auto first = std::make_shared<FollowingSink>(false);
    logger.init(fileLogger, nullptr, folder.path());
    logger.registerLogger(first);
    logger.blockListString("hidden-from-the-start");
    logger.flush();

    std::vector<std::shared_ptr<FollowingSink>> late;
    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&running, thread] {
            writeLines(thread);
            --running;
        });
    }
    for (int round = 0; running > 0; ++round) {
        if (round < 20) {
            late.push_back(std::make_shared<FollowingSink>(true));
            logger.registerLogger(late.back());
            logger.blockListString("also hidden " + std::to_string(round));
        }
        EXPECT_EQ(logger.filterStrings("a hidden-from-the-start"), "a ********");
        logger.setLogLevel(RootLoggerLevel::Info);
        logger.flush();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    TARN_LOG(RootLoggerLevel::Info, kEnd);
    while (!first->isAtEnd) {
        logger.flush(); // which gives up after five seconds; a slow machine may need more
    }
    logger.flush();

    EXPECT_EQ(first->follower.count(), kThreads * kLinesOfThread);
    EXPECT_EQ(first->follower.faults(), 0);
    for (const auto& sink : late) {
        EXPECT_EQ(sink->follower.faults(), 0);
    }
    EXPECT_GT(files->parts.size(), 5U);
    files->parts.push_back(folder / "current_log.txt");
    LineFollower inFiles;
    for (const std::string& part : files->parts) {
        std::ifstream file(part);
        for (std::string line; std::getline(file, line);) {
            inFiles.follow(line);
        }
    }
    EXPECT_EQ(inFiles.count(), kThreads * kLinesOfThread);
    EXPECT_EQ(inFiles.faults(), 0);
}

} // namespace
} // namespace tarn

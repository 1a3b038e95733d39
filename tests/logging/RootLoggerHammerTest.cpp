// Everything that the logger can be asked for, by many threads at once.

#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "logging/file/FileLogger.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <fstream>
#include <thread>
#include <vector>

namespace tarn {
namespace {

constexpr int kThreads = 16;
constexpr int kLinesOfThread = HAMMER_LINES / kThreads;

/// Follows the lines of each thread: each comes once, in order, whole and masked.
class Follower : public ILogger {
public:
    /// Any line may be a thread's first when it comes late.
    explicit Follower(bool isLate) { mNext.fill(isLate ? kUnknown : 0); }

    void log(const std::string& line, const LogComponents& /*components*/) override {
        const std::size_t begin = line.find("::line of ");
        if (begin == std::string::npos) {
            return; // the logger's own
        }
        int& next = mNext.at(static_cast<std::size_t>(line[begin + 10] - 'a'));
        const std::string rest = line.substr(begin + 12);
        const int sequence = std::stoi(rest);
        const bool isWhole = rest == std::to_string(sequence) + " ******** end of the line";
        faults += isWhole && (sequence == next || next == kUnknown) ? 0 : 1;
        next = sequence + 1;
        ++count;
    }
    void clearLogs() override {}
    void close() override {}
    void flush() override {}

    int faults = 0;
    int count = 0;

private:
    static constexpr int kUnknown = -1;
    std::array<int, kThreads> mNext{};
};

void writeLines(char thread) {
    for (int sequence = 0; sequence < kLinesOfThread; ++sequence) {
        TARN_LOG(RootLoggerLevel::Info, "line of " << thread << " " << sequence
                                                   << " hidden-from-the-start end of the line");
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
    std::vector<std::shared_ptr<Follower>> followers{std::make_shared<Follower>(false)};
    logger.init(fileLogger, nullptr, folder.path());
    logger.registerLogger(followers[0]);
    logger.blockListString("hidden-from-the-start");
    logger.flush();

    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (char thread = 'a'; thread < 'a' + kThreads; ++thread) {
        threads.emplace_back([&running, thread] {
            writeLines(thread);
            --running;
        });
    }
    for (int round = 0; running > 0; ++round) {
        if (round < 5) {
            followers.push_back(std::make_shared<Follower>(true));
            logger.registerLogger(followers.back());
            logger.blockListString("also hidden " + std::to_string(round));
        }
        EXPECT_EQ(logger.filterStrings("a hidden-from-the-start"), "a ********");
        logger.setLogLevel(RootLoggerLevel::Info);
        logger.flush();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    logger.filterStrings("waits for all before it, where a flush gives up after five seconds");
    logger.flush();

    EXPECT_GT(files->parts.size(), 5U);
    files->parts.push_back(folder / "current_log.txt");
    Follower inFiles(false);
    for (const std::string& part : files->parts) {
        std::ifstream file(part);
        for (std::string line; std::getline(file, line);) {
            inFiles.log(line, {});
        }
    }
    EXPECT_EQ(inFiles.count, kThreads * kLinesOfThread);
    EXPECT_EQ(inFiles.faults, 0);
    EXPECT_EQ(followers[0]->count, kThreads * kLinesOfThread);
    for (const auto& follower : followers) {
        EXPECT_EQ(follower->faults, 0);
    }
}

} // namespace
} // namespace tarn

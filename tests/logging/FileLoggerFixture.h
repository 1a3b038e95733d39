#pragma once

#include "logging/file/FileLogger.h"
#include "platform/KnownFolders.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tarn::testing {

/// Loggers in a folder of their own, with the smallest size limit (500,000 bytes).
class FileLoggerFixture : public ::testing::Test {
protected:
    /// It tries a failed file again only when it is flushed.
    std::shared_ptr<FileLogger> startLogger(
        bool movePreviousRun = true,
        std::shared_ptr<IFileUtils> utils = std::make_shared<FileUtils>()) const {
        auto logger = std::make_shared<FileLogger>(logs, 1, std::move(utils), nullptr, true);
        logger->setRetryInterval(std::chrono::hours(24));
        logger->start(movePreviousRun);
        return logger;
    }
    void log(BaseFileLogger& logger, const std::string& line) const { logger.log(line, {}); }
    /// Lines of 100 bytes with their line feed, numbered from `first`.
    void logNumbered(BaseFileLogger& logger, int first, int count) const {
        for (int number = first; number < first + count; ++number) {
            log(logger, numbered(number));
        }
    }
    static std::string numbered(int number) {
        const std::string text = std::to_string(number);
        return text + std::string(99 - text.size(), '.');
    }
    static std::string numberedLines(int first, int count) {
        std::string lines;
        for (int number = first; number < first + count; ++number) {
            lines += numbered(number) + '\n';
        }
        return lines;
    }
    /// Bytes that nothing can compress.
    static std::string noise(std::size_t size) {
        std::string bytes;
        for (unsigned state = 1; bytes.size() < size; state = state * 1664525U + 1013904223U) {
            bytes.push_back(static_cast<char>(state >> 24U));
        }
        return bytes;
    }
    std::string path(const std::string& name) const { return files->joinPath(logs, name); }
    std::string content(const std::string& name) const { return readFile(path(name)); }

    /// For long contents: a failure tells the sizes alone.
    void expectContent(const std::string& name, const std::string& expected) const {
        const std::string actual = content(name);
        EXPECT_TRUE(actual == expected)
            << name << ": " << actual.size() << " bytes instead of " << expected.size();
    }

    const TemporaryFolder folder;
    const std::string logs = folder.makeFolder("Logs");
    const std::shared_ptr<FileUtils> files = std::make_shared<FileUtils>();
};

} // namespace tarn::testing

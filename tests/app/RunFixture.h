#pragma once

#include "support/FakeLibraries.h"
#include "support/ProcessRunner.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

// Whole runs of the product library, one process each, with the fake engine. The driver
// (ToastDriver.cpp) loads the library as the launcher does and acts as the user.

namespace recordconverter::app::test {

namespace fs = std::filesystem;
using tarn::testing::Process;

/// A runtime folder of its own, with what the build laid out, the fake engine in the real one's
/// place, and a data folder for the log and the translations.
class Run : public testing::Test {
protected:
    Run() {
        fs::create_directory(runtime);
        for (const auto& entry : fs::directory_iterator(RUNTIME_FOLDER)) {
            fs::create_symlink(entry.path(), runtime / entry.path().filename());
        }
        useEngine("whole");
    }

    void useEngine(const std::string& variant) {
        for (const auto& entry : fs::directory_iterator(tarn::testing::fakeEngineFolder(variant))) {
            fs::remove(runtime / entry.path().filename());
            fs::create_symlink(entry.path(), runtime / entry.path().filename());
        }
    }

    Process::Start command(const std::vector<std::string>& actions,
                           std::vector<std::string> arguments) const {
        Process::Start start;
        start.command = {TOAST_DRIVER, PRODUCT_LIBRARY};
        start.command.insert(start.command.end(), actions.begin(), actions.end());
        start.command.emplace_back("--");
        start.command.insert(start.command.end(), arguments.begin(), arguments.end());
        start.environment = environment;
        return start;
    }
    /// Runs with the engine's script as the source.
    Process::Start scripted(const std::string& script, const std::vector<std::string>& actions,
                            const std::string& name = "source") const {
        return command(actions, {runtime, "", folder.write(name, script), destination, "2"});
    }
    int run(const Process::Start& start) {
        Process process(start);
        const std::optional<int> status = process.wait();
        output = process.output();
        EXPECT_EQ(process.errors().find("Sanitizer"), std::string::npos) << process.errors();
        return status.value_or(-1);
    }

    /// The log's lines from the place in the program on: "File:line function::text".
    std::vector<std::string> log() const {
        std::vector<std::string> lines;
        std::ifstream file(fs::path(data) / "QuorellTarn/Logs/record-converter/current_log.txt");
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    /// Expects lines with these parts, in this order.
    void expectLog(const std::vector<std::string>& parts) const {
        std::size_t found = 0;
        for (const std::string& line : log()) {
            if (found < parts.size() && line.find(parts[found]) != std::string::npos) {
                ++found;
            }
        }
        EXPECT_EQ(found, parts.size())
            << "missing, or out of order: " << (found < parts.size() ? parts[found] : "");
    }

    tarn::testing::TemporaryFolder folder;
    fs::path runtime = folder / "runtime";
    std::string data = folder.makeFolder("data");
    std::string destination = folder / "meeting.mp4";
    std::vector<std::pair<std::string, std::string>> environment{{"QT_QPA_PLATFORM", "offscreen"},
                                                                 {"XDG_DATA_HOME", data},
                                                                 {"LANG", "en_US.UTF-8"},
                                                                 {"LC_ALL", ""},
                                                                 {"LANGUAGE", ""}};
    std::string output;
};

} // namespace recordconverter::app::test

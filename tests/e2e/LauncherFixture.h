#pragma once

#include "platform/Identity.h"
#include "support/FakeLibraries.h"
#include "support/ProcessRunner.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace e2e {

using tarn::testing::fakeEngineFolder;
using tarn::testing::Process;
using tarn::testing::ProcessResult;
using tarn::testing::readFile;
using tarn::testing::runProcess;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// Starts the built launcher with a data folder of the test's own, and looks at what it leaves.
class LauncherFixture : public ::testing::Test {
protected:
    /// The launcher's command with the arguments, not started yet.
    Process::Start windowCommand(const std::vector<std::string>& arguments) const {
        const tarn::FileUtils files;
        const std::string own = tarn::platform::programFile();
        const std::string programs = files.joinPath(files.directoryOfPath(own) + "..", "bin");
        Process::Start start{
            .command = {files.joinPath(programs, "record-converter" + files.extensionOfPath(own))},
            .environment = {{"XDG_DATA_HOME", mData.path()}},
            .folder = mFolder.path()};
        start.command.insert(start.command.end(), arguments.begin(), arguments.end());
        return start;
    }
    /// The same with `--no-window` before them.
    Process::Start command(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "--no-window");
        return windowCommand(arguments);
    }
    ProcessResult launch(const std::vector<std::string>& arguments) const {
        return runProcess(command(arguments));
    }
    /// The same on a variant of the fake engine, whose script is the first source's content.
    ProcessResult launchFake(const std::string& variant, std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--engine-folder", fakeEngineFolder(variant)});
        return launch(arguments);
    }

    /// The command for the window of a variant whose product library follows an order.
    Process::Start showCommand(const std::string& order, std::vector<std::string> arguments,
                               const std::string& variant = "whole") const {
        arguments.insert(arguments.begin(), {"--engine-folder", fakeEngineFolder(variant)});
        Process::Start start = windowCommand(arguments);
        start.environment.emplace_back("FAKE_PRODUCT", order);
        start.environment.emplace_back("QT_QPA_PLATFORM", "offscreen");
        return start;
    }
    /// Starts a conversion and presses Ctrl-C once it shows a text.
    static void expectStopped(const Process::Start& start, const std::string& shown) {
        Process process(start);
        ASSERT_TRUE(process.waitForOutput(shown));
        const auto begin = std::chrono::steady_clock::now();
        process.interrupt();
        EXPECT_EQ(process.wait(), 130);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
        EXPECT_THAT(process.errors(), HasSubstr("Stopped: nothing was converted"));
    }

    /// Where the launcher says that its log is. Linux: of the test's own. Windows: the user's.
    std::string logFolder() const {
        const std::string help = launch({"--help"}).output;
        const std::size_t begin = help.rfind("log: ") + 5;
        return help.substr(begin, help.find_first_of("\r\n", begin) - begin);
    }
    /// The log of the last run that wrote one.
    std::vector<std::string> logLines() const {
        const tarn::FileUtils files;
        return files.readAllLines(files.joinPath(logFolder(), "current_log.txt"));
    }
    /// How many lines of the log hold the text.
    std::ptrdiff_t logged(const std::string& text) const {
        return std::ranges::count_if(logLines(),
                                     [&](const std::string& line) { return line.contains(text); });
    }

    /// The names in the working folder, sorted.
    std::vector<std::string> filesLeft() const {
        std::vector<std::string> names = tarn::FileUtils().getFilesRecursive(mFolder.path());
        for (std::string& name : names) {
            name.erase(0, mFolder.path().size() + 1);
        }
        std::ranges::sort(names);
        return names;
    }
    static bool exists(const std::string& path) { return tarn::FileUtils().exists(path); }

    tarn::testing::TemporaryFolder mData;
    tarn::testing::TemporaryFolder mFolder;
    std::string mDestination = mFolder / "out.mp4";
};

} // namespace e2e

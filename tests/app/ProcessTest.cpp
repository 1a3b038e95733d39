#include "support/FakeLibraries.h"
#include "support/ProcessRunner.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <random>

// Whole runs of the product library, one process each, with the fake engine. ToastDriver.cpp loads
// the library as the launcher does and acts as the user.

namespace recordconverter::app::test {
namespace {

namespace fs = std::filesystem;
using tarn::testing::Process;
using tarn::testing::readFile;
using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

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
    /// A run with the engine's script as the source and the driver's actions.
    Process::Start prepare(const std::string& script, const std::string& actions,
                           const std::string& name = "source") const {
        return {{TOAST_DRIVER, PRODUCT_LIBRARY, actions, runtime, "", folder.write(name, script),
                 destination, "2"},
                environment,
                ""};
    }
    int run(const std::string& script, const std::string& actions) {
        const auto result = tarn::testing::runProcess(prepare(script, actions));
        EXPECT_EQ(result.errors.find("Sanitizer"), std::string::npos) << result.errors;
        output = result.output;
        return result.status;
    }

    std::string log() const {
        return readFile(data + "/QuorellTarn/Logs/record-converter/current_log.txt");
    }

    tarn::testing::TemporaryFolder folder;
    fs::path runtime = folder / "runtime";
    std::string data = folder.makeFolder("data");
    std::string destination = folder / "meeting.mp4";
    std::vector<std::pair<std::string, std::string>> environment{{"LANG", "en_US.UTF-8"},
                                                                 {"LC_ALL", ""},
                                                                 {"LANGUAGE", ""},
                                                                 {"QT_QPA_PLATFORM", "offscreen"},
                                                                 {"XDG_DATA_HOME", data}};
    std::string output;
};

TEST_F(Run, FinishedAndClosedEndsWithStatus0AndEveryLineInTheLog) {
    EXPECT_EQ(run("progress 12.5\nwrite film\nprogress 100\n", "await=viewFinish print escape"), 0);
    EXPECT_THAT(output, AllOf(HasSubstr("viewStart 0"), HasSubstr("viewError 0"),
                              HasSubstr("viewFinish 1 Your recording is ready.")));
    EXPECT_EQ(readFile(destination), "film");
    EXPECT_FALSE(fs::exists(folder / "source"));
    EXPECT_THAT(log(), ContainsRegex("::argc:6.*::configure:" + runtime.string() +
                                     ".*::configure:" + destination +
                                     ".*::configure:2.*::QTDIR:, qtPluginPath:, "
                                     "qtPlatformPluginPath:, currentPath:.*:152 parseTheme::theme "
                                     "is dark:1.*:105 onConvertStarted::converting starting:" +
                                     destination));
    EXPECT_THAT(log(), ContainsRegex(":111 onConvertProgress::progress: 12.5%.*"
                                     ":111 onConvertProgress::progress: 100%.*"
                                     ":114 onConvertProgress::recording convert completed.*"
                                     ":81 startExitTimer::start exit timer"));
    EXPECT_THAT(log(), AllOf(EndsWith(":191 close::Close convert recording\n"),
                             Not(HasSubstr("<Warn>")), Not(HasSubstr("<Error>"))));
}

TEST_F(Run, FailedAndClosedKeepsTheSource) {
    EXPECT_EQ(run("progress 1\nerror 7\n", "await=viewError print escape"), 0);
    EXPECT_THAT(output, HasSubstr("viewError 1 Your recording conversion has failed."));
    EXPECT_TRUE(fs::exists(folder / "source"));
    EXPECT_THAT(log(), ContainsRegex(":123 failConversion::recording convert error:" + destination +
                                     ", error code:7.*:81 startExitTimer::start exit timer.*"
                                     ":191 close::Close convert recording"));
}

TEST_F(Run, ClosedConvertingViewConvertsOnUntilTheEventLoopEndsAndAllIsTornDown) {
    EXPECT_EQ(
        run("progress 1\nhold\nwrite film\nprogress 100\n", "await=viewStart escape print quit"),
        0);
    EXPECT_THAT(output, AllOf(HasSubstr("viewStart 0"), HasSubstr("viewFinish 0"),
                              HasSubstr("returned 0")));
    EXPECT_EQ(readFile(destination), "film") << "the process ended with the view";
    // The engine first, with the controller; the trace bridge last, from the entry point.
    EXPECT_THAT(log(), ContainsRegex("::FreeLibrary successfully.*::FreeLibrary successfully"));
    EXPECT_THAT(log(), AllOf(Not(HasSubstr("<Warn>")), Not(HasSubstr("<Error>"))));
}

TEST_F(Run, StartThatTheEngineRefusesIsShown) {
    EXPECT_EQ(run("result 0x1000\n", "await=viewError escape"), 0);
    EXPECT_THAT(log(), ContainsRegex("Failed to start media convert.*start exit timer"));
    fs::remove(runtime / "libmediaconverter.so");
    EXPECT_EQ(run("", "await=viewError escape"), 0);
}

TEST_F(Run, WindowThatCanNotBeLoadedReturnsMinusOne) {
    fs::remove(runtime / "qml");
    EXPECT_EQ(run("progress 1\n", ""), 255);
    EXPECT_THAT(output, HasSubstr("returned -1"));
    EXPECT_THAT(log(), AllOf(ContainsRegex("<Warn> [^\n]*::qrc:/MediaConverterNotification.qml: 5, "
                                           "[^\n]*is not installed"),
                             Not(HasSubstr("converting starting"))));
    EXPECT_TRUE(fs::exists(folder / "source"));
}

TEST_F(Run, PluginsAndModulesOfAnotherQtAreNotLoaded) {
    // Copies that would work, wherever Qt might be led to look for them.
    const fs::path other = folder.makeFolder("other");
    for (const char* const kind : {"platforms", "imageformats"}) {
        for (const char* const place : {"", "plugins"}) {
            fs::create_directories(other / place);
            fs::copy(fs::path(RUNTIME_FOLDER) / kind, other / place / kind,
                     fs::copy_options::recursive);
        }
    }
    fs::copy(RUNTIME_FOLDER "/qml/", other, fs::copy_options::recursive);
    for (const char* const name : {"QTDIR", "QT_PLUGIN_PATH", "QML_IMPORT_PATH", "QML2_IMPORT_PATH",
                                   "QT_QPA_PLATFORM_PLUGIN_PATH", "QT_QUICK_CONTROLS_STYLE"}) {
        environment.emplace_back(name, other);
    }
    EXPECT_EQ(run("progress 100\n", "await=viewFinish modules escape"), 0);
    EXPECT_THAT(output, AllOf(HasSubstr("qoffscreen"), HasSubstr("qsvg"),
                              HasSubstr("qtquickcontrols2basicstyleplugin"),
                              Not(HasSubstr(other.string()))));
    EXPECT_THAT(log(), HasSubstr("::QTDIR:, qtPluginPath:, qtPlatformPluginPath:, currentPath:"));
}

TEST_F(Run, SpeaksTheLanguageOfTheSystem) {
    fs::create_directories(data + "/QuorellTarnLauncher/dynamic_dependencies");
    fs::copy(RUNTIME_FOLDER "/translations",
             data + "/QuorellTarnLauncher/dynamic_dependencies/translations");
    for (const auto& [language, text] : {std::pair{"de_AT", "Ihre Aufzeichnung ist fertig."},
                                         {"pt_BR", "Sua gravação está pronta."},
                                         {"pt_AO", "A sua gravação está pronta."},
                                         {"zh_HK", "您的錄製檔已就緒。"},
                                         {"eo", "Your recording is ready."}}) {
        environment[0].second = std::string(language) + ".UTF-8";
        EXPECT_EQ(run("progress 100\n", "await=viewFinish print close"), 0);
        EXPECT_THAT(output, HasSubstr(std::string("viewFinish 1 ") + text)) << language;
    }
}

TEST_F(Run, ClosedAtAnyMomentEndsWithStatus0AHundredTimes) {
    std::string script;
    for (int percent = 0; percent < 20000; ++percent) {
        script += "progress " + std::to_string(percent / 250) + "\n";
    }
    std::string ends = script;
    for (int index = 0; index < 5000; ++index) {
        ends += "error 3\nprogress 100\n";
    }
    std::mt19937 random(20260101); // a round that fails once is the same the next time
    std::uniform_int_distribution<int> moment(0, 300);
    for (int round = 0; round < 25; ++round) {
        // One engine is stopped first; the other has no stop and reports into the process's end.
        useEngine(round % 4 == 0 ? "whole" : "no-stop");
        // More at once than there are processors: every thread is preempted.
        std::vector<std::unique_ptr<Process>> processes;
        for (int index = 0; index < 4; ++index) {
            processes.push_back(std::make_unique<Process>(prepare(
                index % 2 == 0 ? script : ends,
                "after=" + std::to_string(moment(random)) + (index < 3 ? " close" : " quit"),
                "source" + std::to_string(index))));
        }
        for (const auto& process : processes) {
            EXPECT_EQ(process->wait(), 0) << process->output() << process->errors();
        }
    }
}

TEST_F(Run, NobodyActsOnEndsAfterAMinute) {
    const auto begin = std::chrono::steady_clock::now();
    Process finished(prepare("progress 100\nprogress 100\n", "", "finished"));
    // Errors and ends without end: the timer's two starts meet again and again.
    std::string script;
    for (int index = 0; index < 200; ++index) {
        script += "error 1\nprogress 100\n";
    }
    Process failed(prepare(script, "", "failed"));
    EXPECT_EQ(finished.wait(), 0);
    EXPECT_EQ(failed.wait(), 0);
    const auto passed = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(passed, std::chrono::seconds(60));
    EXPECT_LE(passed, std::chrono::seconds(75));
    EXPECT_THAT(log(), EndsWith(":94 onExitTimer::exit timer timeout\n"));
}

} // namespace
} // namespace recordconverter::app::test

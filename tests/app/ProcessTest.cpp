#include "app/RunFixture.h"

#include <random>

namespace recordconverter::app::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr int kReturnedMinusOne = 98;

} // namespace

TEST_F(Run, FinishedAndClosedEndsWithStatus0AndEveryLineInTheLog) {
    EXPECT_EQ(run(scripted("progress 12.5\nwrite film\nprogress 100\n",
                           {"await=viewFinish", "print", "key=Escape"})),
              0);
    EXPECT_THAT(output, AllOf(HasSubstr("viewStart 0"), HasSubstr("viewError 0"),
                              HasSubstr("viewFinish 1 Your recording is ready.")));
    EXPECT_EQ(tarn::testing::readFile(destination), "film");
    EXPECT_FALSE(fs::exists(folder / "source"));
    expectLog({"::argc:6", "::configure:" + runtime.string(), "::configure:" + destination,
               "::configure:2", "::QTDIR:, qtPluginPath:, qtPlatformPluginPath:, currentPath:",
               ":152 parseTheme::theme is dark:1", ":105 onConvertStarted::converting starting:"});
    expectLog({":111 onConvertProgress::progress: 12.5%", ":111 onConvertProgress::progress: 100%",
               ":114 onConvertProgress::recording convert completed",
               ":81 startExitTimer::start exit timer", ":191 close::Close convert recording"});
    EXPECT_THAT(log().back(), HasSubstr("Close convert recording"));
    EXPECT_THAT(log(), Not(Contains(HasSubstr("<Warn>"))));
    EXPECT_THAT(log(), Not(Contains(HasSubstr("<Error>"))));
}

TEST_F(Run, FailedAndClosedKeepsTheSource) {
    EXPECT_EQ(run(scripted("progress 1\nerror 7\n", {"await=viewError", "print", "key=Escape"})),
              0);
    EXPECT_THAT(output, HasSubstr("viewError 1 Your recording conversion has failed."));
    EXPECT_TRUE(fs::exists(folder / "source"));
    expectLog({":123 failConversion::recording convert error:" + destination + ", error code:7",
               ":81 startExitTimer::start exit timer", ":191 close::Close convert recording"});
}

TEST_F(Run, ClosedConvertingViewConvertsOn) {
    EXPECT_EQ(run(scripted("progress 1\nhold\nwrite film\nprogress 100\n",
                           {"await=viewStart", "key=Escape", "print", "quit"})),
              0);
    EXPECT_THAT(output, AllOf(HasSubstr("viewStart 0"), HasSubstr("viewFinish 0"),
                              HasSubstr("returned 0")));
    EXPECT_EQ(tarn::testing::readFile(destination), "film") << "the process ended with the view";
}

TEST_F(Run, EndOfTheEventLoopTearsDownAndReturnsItsResult) {
    EXPECT_EQ(run(scripted("progress 1\nhold\n", {"await=viewStart", "quit"})), 0);
    EXPECT_THAT(output, HasSubstr("returned 0"));
    // The engine first, with the controller; the trace bridge last, from the entry point.
    expectLog({"::FreeLibrary successfully", "::FreeLibrary successfully"});
    EXPECT_THAT(log(), Not(Contains(HasSubstr("<Error>"))));
    EXPECT_THAT(log(), Not(Contains(HasSubstr("<Warn>"))));
}

TEST_F(Run, StartThatTheEngineRefusesIsShown) {
    EXPECT_EQ(run(scripted("result 0x1000\n", {"await=viewError", "key=Escape"})), 0);
    expectLog({"Failed to start media convert.", "start exit timer"});
    fs::remove(runtime / "libmediaconverter.so");
    EXPECT_EQ(run(scripted("", {"await=viewError", "key=Escape"})), 0);
}

TEST_F(Run, WindowThatCanNotBeLoadedReturnsMinusOne) {
    fs::remove(runtime / "qml");
    EXPECT_EQ(run(scripted("progress 1\n", {})), kReturnedMinusOne);
    EXPECT_THAT(log(), Contains(AllOf(HasSubstr("<Warn>"), HasSubstr("is not installed"))));
    EXPECT_THAT(log(), Not(Contains(HasSubstr("converting starting"))));
    EXPECT_TRUE(fs::exists(folder / "source"));

    // All modules but the overlay; the system has none of that name.
    fs::create_directory(runtime / "qml");
    for (const char* const module : {"QtQml", "QtQuick"}) {
        fs::create_symlink(fs::path(RUNTIME_FOLDER "/qml") / module, runtime / "qml" / module);
    }
    EXPECT_EQ(run(scripted("progress 1\n", {})), kReturnedMinusOne);
    expectLog({"\"QtGraphicalEffects\" is not installed"});
}

TEST_F(Run, PluginsAndModulesOfAnotherQtAreNotLoaded) {
    // Copies that would work, wherever Qt might be led to look for them.
    const fs::path other = folder.makeFolder("other");
    const auto copy = fs::copy_options::recursive;
    for (const char* const kind : {"platforms", "imageformats"}) {
        fs::copy(fs::path(RUNTIME_FOLDER) / kind, other / kind, copy);
        fs::create_directories(other / "plugins");
        fs::copy(fs::path(RUNTIME_FOLDER) / kind, other / "plugins" / kind, copy);
    }
    fs::copy(RUNTIME_FOLDER "/qml/", other, copy);
    for (const char* const name : {"QTDIR", "QT_PLUGIN_PATH", "QML_IMPORT_PATH", "QML2_IMPORT_PATH",
                                   "QT_QPA_PLATFORM_PLUGIN_PATH"}) {
        environment.emplace_back(name, other);
    }
    EXPECT_EQ(run(scripted("progress 100\n", {"await=viewFinish", "modules", "key=Escape"})), 0);
    EXPECT_THAT(output, AllOf(HasSubstr("qoffscreen"), HasSubstr("qsvg"),
                              HasSubstr("qtquickcontrols2basicstyleplugin")));
    EXPECT_THAT(output, Not(HasSubstr(other.string())));
    expectLog({"::QTDIR:, qtPluginPath:, qtPlatformPluginPath:, currentPath:"});
}

TEST_F(Run, SpeaksTheLanguageOfTheSystem) {
    const fs::path installed = data + "/QuorellTarnLauncher/dynamic_dependencies/translations";
    fs::create_directories(installed);
    for (const auto& file : fs::directory_iterator(RUNTIME_FOLDER "/translations")) {
        fs::copy(file, installed);
    }
    const std::pair<const char*, const char*> expected[] = {
        {"de_AT.UTF-8", "viewFinish 1 Ihre Aufzeichnung ist fertig."},
        {"pt_BR.UTF-8", "viewFinish 1 Sua gravação está pronta."},
        {"pt_AO.UTF-8", "viewFinish 1 A sua gravação está pronta."},
        {"zh_HK.UTF-8", "viewFinish 1 您的錄製檔已就緒。"},
        {"eo.UTF-8", "viewFinish 1 Your recording is ready."},
    };
    for (const auto& [language, line] : expected) {
        environment[2].second = language;
        EXPECT_EQ(run(scripted("progress 100\n", {"shown=viewFinish", "print", "close"})), 0);
        EXPECT_THAT(output, HasSubstr(line)) << language;
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
    constexpr int kRounds = 100;
    constexpr int kAtOnce = 4; // more than there are processors: every thread is preempted
    for (int round = 0; round < kRounds; round += kAtOnce) {
        // One engine is stopped first; the other has no stop and reports into the process's end.
        useEngine(round % (4 * kAtOnce) == 0 ? "whole" : "no-stop");
        std::vector<std::unique_ptr<Process>> processes;
        for (int index = 0; index < kAtOnce; ++index) {
            processes.push_back(std::make_unique<Process>(
                scripted(index % 2 == 0 ? script : ends,
                         {"after=" + std::to_string(moment(random)), index < 3 ? "close" : "quit"},
                         "source" + std::to_string(index))));
        }
        for (const auto& process : processes) {
            EXPECT_EQ(process->wait().value_or(-1), 0) << process->output() << process->errors();
        }
    }
}

} // namespace recordconverter::app::test

#include "app/EntryContext.h"
#include "app/QtEnvironment.h"
#include "app/QtMessageHandler.h"
#include "app/RunApplication.h"
#include "recordconverter/ConverterLog.h"
#include "support/ErrorWatch.h"
#include "support/RecordingLogHook.h"

#include <QCoreApplication>
#include <QDir>
#include <QMessageLogContext>
#include <QQmlEngine>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

// The steps of the start-up that a process need not be spent on; ProcessTest has the whole.

namespace recordconverter::app::test {
namespace {

using tarn::testing::expectErrorLine;
using tarn::testing::RecordingLogHook;
using testing::ElementsAre;

constexpr const char* kVariables[] = {"QTDIR",
                                      "QT_PLUGIN_PATH",
                                      "QT_QPA_PLATFORM_PLUGIN_PATH",
                                      "QTWEBENGINE_REMOTE_DEBUGGING",
                                      "QML2_IMPORT_PATH", // up to here they are cleared
                                      "QML_IMPORT_PATH",
                                      "QT_LOGGING_RULES",
                                      "QT_QUICK_CONTROLS_STYLE"};

/// Starts with every variable poisoned; puts them and the library paths back.
class QtEnvironment : public testing::Test {
protected:
    QtEnvironment() {
        for (const char* const name : kVariables) {
            if (qEnvironmentVariableIsSet(name)) {
                mBefore[name] = qgetenv(name);
            }
            qputenv(name, "/poison");
        }
    }
    ~QtEnvironment() override {
        for (const char* const name : kVariables) {
            mBefore.contains(name) ? qputenv(name, mBefore[name]) : qunsetenv(name);
        }
        QCoreApplication::setLibraryPaths(mLibraryPaths);
    }

    QMap<QByteArray, QByteArray> mBefore;
    QStringList mLibraryPaths = QCoreApplication::libraryPaths();
};

/// A set-up that does nothing but fail.
class FailingLog : public ConverterLog {
public:
    void initialize(int, wchar_t**) override { throw std::runtime_error("no folder"); }
    void attach(const std::string&) override {}
    void installQtMessageHandler() override {}
};

} // namespace

TEST_F(QtEnvironment, IsPointedAtTheRuntimeFolderAlone) {
    prepareQtEnvironment({"program", "/opt/run time//./x"});
    for (std::size_t index = 0; index < 5; ++index) {
        EXPECT_FALSE(qEnvironmentVariableIsSet(kVariables[index])) << kVariables[index];
    }
    const QChar separator = QDir::listSeparator();
    EXPECT_EQ(
        qEnvironmentVariable("QML_IMPORT_PATH"),
        QString("/opt/run time/x") + separator + ":/qt/qml" + separator + "/opt/run time/x/qml");
    EXPECT_EQ(qgetenv("QT_LOGGING_RULES"), "*.info=true;");
    EXPECT_EQ(qgetenv("QT_QUICK_CONTROLS_STYLE"), "Basic");
    EXPECT_EQ(QCoreApplication::libraryPaths(), QStringList("/opt/run time//./x"));

    QQmlEngine engine;
    limitImportPaths(engine, {"program", "/opt/runtime"});
    for (const QString& path : engine.importPathList()) {
        EXPECT_TRUE(path.startsWith("/opt/runtime") || path.startsWith("qrc:"))
            << path.toStdString();
    }
}

TEST_F(QtEnvironment, KeepsWhatItHasWithoutARuntimeFolder) {
    prepareQtEnvironment({"program"});
    EXPECT_FALSE(qEnvironmentVariableIsSet("QT_PLUGIN_PATH"));
    EXPECT_EQ(qgetenv("QT_LOGGING_RULES"), "*.info=true;");
    EXPECT_EQ(qgetenv("QML_IMPORT_PATH"), "/poison");
    EXPECT_EQ(qgetenv("QT_QUICK_CONTROLS_STYLE"), "/poison");
    EXPECT_EQ(QCoreApplication::libraryPaths(), mLibraryPaths);
}

TEST(QtMessageHandler, LogsWhatTheContextHoldsAtTheLevelOfTheType) {
    RecordingLogHook log{tarn::testing::noteErrorLine};
    expectErrorLine("critical");
    expectErrorLine("fatal");
    qtMessageHandler(QtDebugMsg, QMessageLogContext("a.cpp", 12, "f()", "qml"), "grün");
    qtMessageHandler(QtInfoMsg, QMessageLogContext("a.cpp", 0, nullptr, "qml"), "info");
    qtMessageHandler(QtWarningMsg, QMessageLogContext(nullptr, 3, "f()", "qml"), "warning");
    qtMessageHandler(QtCriticalMsg, QMessageLogContext(), "critical");
    qtMessageHandler(QtFatalMsg, QMessageLogContext(), "fatal");
    EXPECT_THAT(log.lines(),
                ElementsAre("<Debug> a.cpp: 12, f(), grün", "<Info> a.cpp: info",
                            "<Warn> 3, f(), warning", "<Error> critical", "<Error> fatal"));
}

TEST(RunApplication, TurnsAnyExceptionIntoOneErrorLineAndMinusOne) {
    RecordingLogHook log{tarn::testing::noteErrorLine};
    expectErrorLine("unexpected error happen!");
    EntryContext context;
    context.converterLog = std::make_shared<FailingLog>();
    EXPECT_EQ(runApplication(context, 0, nullptr), -1);
    EXPECT_THAT(log.lines(), ElementsAre("<Error> unexpected error happen!"));
}

} // namespace recordconverter::app::test

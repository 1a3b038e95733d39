#include "app/LocalizationStrings.h"
#include "app/MediaConverterController.h"
#include "platform/Library.h"
#include "recordconverter/ConverterLog.h"
#include "support/ErrorWatch.h"
#include "support/FakeLibraries.h"
#include "support/RecordingLogHook.h"
#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLineEdit>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTranslator>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace recordconverter::app::test {
namespace {

using tarn::testing::expectErrorLine;
using tarn::testing::fakeEngineFolder;
using tarn::testing::FakeLibrary;
using tarn::testing::RecordingLogHook;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

class SilentLog : public ConverterLog {
public:
    void initialize(int, wchar_t**) override {}
    void attach(const std::string&) override {}
    void installQtMessageHandler() override {}
};

/// A controller on the GUI thread with the fake engine, whose script is the source file.
class Controller : public testing::Test {
protected:
    Controller() {
        texts->loadSourceTexts();
        texts->translateAll(translator);
    }
    ~Controller() override {
        if (controller != nullptr) {
            MediaConverterController::release(std::move(controller));
        }
    }

    void initialize(std::vector<std::string> arguments) {
        controller->initialize(arguments, texts, std::make_shared<SilentLog>());
    }
    void initializeWithScript(const std::string& script, const std::string& theme = "1") {
        initialize({"program", fakeEngineFolder("whole"), "", folder.write("source", script),
                    destination, theme});
    }
    bool waitForSignal(QSignalSpy& spy) { return !spy.isEmpty() || spy.wait(5000); }
    std::vector<int> linesOf(const std::string& beginning) const {
        std::vector<int> numbers;
        for (const auto& record : log.records()) {
            if (record.message.starts_with(beginning)) {
                numbers.push_back(record.line);
            }
        }
        return numbers;
    }

    /// The timer's start is queued to this thread, behind the signal that a spy sees first.
    bool waitForExitTimer() {
        return QTest::qWaitFor([this] { return !linesOf("start exit timer").empty(); });
    }

    RecordingLogHook log{tarn::testing::noteErrorLine};
    tarn::testing::TemporaryFolder folder;
    std::string destination = folder / "mee ting.mp4";
    QTranslator translator;
    std::shared_ptr<LocalizationStrings> texts = std::make_shared<LocalizationStrings>();
    std::shared_ptr<MediaConverterController> controller =
        std::make_shared<MediaConverterController>();
};

/// Catches what would be handed to the desktop.
class OpenedUrls : public QObject {
    Q_OBJECT
public:
    OpenedUrls() { QDesktopServices::setUrlHandler("file", this, "handle"); }
    ~OpenedUrls() override { QDesktopServices::unsetUrlHandler("file"); }
    QList<QUrl> urls;
public slots:
    void handle(const QUrl& url) { urls << url; }
};

} // namespace

TEST_F(Controller, HasItsSignalsSlotsAndPropertiesInTheAgreedOrder) {
    const QMetaObject& meta = MediaConverterController::staticMetaObject;
    std::vector<std::string> members;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        const QMetaMethod method = meta.method(index);
        members.push_back((method.methodType() == QMetaMethod::Signal ? "signal " : "slot ") +
                          method.methodSignature().toStdString());
        EXPECT_EQ(method.access(), QMetaMethod::Public);
    }
    for (int index = meta.propertyOffset(); index < meta.propertyCount(); ++index) {
        const QMetaProperty property = meta.property(index);
        members.push_back(std::string(property.typeName()) + " " + property.name());
        EXPECT_TRUE(property.isReadable() && property.isWritable());
        EXPECT_STREQ(property.notifySignal().name(), "infoChanged");
    }
    EXPECT_THAT(
        members,
        ElementsAre("signal convertStarted()", "signal convertProgress(float,QString)",
                    "signal convertFinished(QString)", "signal convertError(int,QString)",
                    "signal infoChanged()", "signal exitProcess()", "slot open()", "slot play()",
                    "slot close()", "bool isDark", "QString convertingStartedText",
                    "QString convertingFinishedText", "QString convertingErrorText"));
}

TEST_F(Controller, TakesTheThemeFromTheFifthArgument) {
    expectErrorLine("Can not load ");
    expectErrorLine("Failed to load ");
    for (const auto& [theme, dark] : {std::pair{"2", true},
                                      {"02", true},
                                      {" 2x", true},
                                      {"1", false},
                                      {"abc", false},
                                      {"", false},
                                      {"99999999999999999999", false},
                                      {"22", false}}) {
        log.clear();
        controller = std::make_shared<MediaConverterController>();
        QSignalSpy changed(controller.get(), &MediaConverterController::infoChanged);
        initialize({"program", "/nowhere", "", "a", "b", theme});
        EXPECT_EQ(controller->property("isDark").toBool(), dark) << theme;
        EXPECT_EQ(linesOf(dark ? "theme is dark:1" : "theme is dark:0"), std::vector{152});
        EXPECT_EQ(changed.size(), 2);
    }
    controller = std::make_shared<MediaConverterController>();
    log.clear();
    QSignalSpy changed(controller.get(), &MediaConverterController::infoChanged);
    initialize({"program", "/nowhere", "", "a", "b"});
    EXPECT_EQ(linesOf("theme is dark:"), std::vector<int>());
    EXPECT_EQ(changed.size(), 1);
}

TEST_F(Controller, TakesTheThreeTextsAndLogsThePathsForTwoArgumentsAlone) {
    expectErrorLine("Can not load ");
    expectErrorLine("Failed to load ");
    initialize({"program", "/nowhere"});
    EXPECT_EQ(controller->property("convertingStartedText"), texts->text(0));
    EXPECT_EQ(controller->property("convertingFinishedText"), texts->text(1));
    EXPECT_EQ(controller->property("convertingErrorText"), texts->text(2));
    EXPECT_THAT(log.lines(), Contains("<Info> convert from: /nowhere"));
    EXPECT_EQ(linesOf("convert from: "), std::vector{74});
    EXPECT_EQ(linesOf("convert to:"), std::vector{75});
    log.clear();
    initialize({"program", "/nowhere", ""});
    EXPECT_EQ(linesOf("convert "), std::vector<int>());
}

TEST_F(Controller, HandsTheExpandedSourcesAndTheFixedValuesToTheEngine) {
    folder.write("part1.rec", "hold");
    initialize({"program", fakeEngineFolder("whole"), "", folder / "part.rec|1:22", destination});
    const FakeLibrary engine("whole", "mediaconverter");
    controller->startConversion();
    EXPECT_EQ(engine.calls(), "create\nmultiple 2 " + (folder / "part1.rec") + " " +
                                  (folder / "part22.rec") + " -> " + destination + " 3 4\n");
}

TEST_F(Controller, FinishesJustShortOfAHundredPercent) {
    initializeWithScript("progress 12.5\nprogress 99.9999\nprogress 99.99999\n");
    QSignalSpy started(controller.get(), &MediaConverterController::convertStarted);
    QSignalSpy finished(controller.get(), &MediaConverterController::convertFinished);
    controller->startConversion();
    ASSERT_TRUE(waitForSignal(finished));
    EXPECT_EQ(started.size(), 1);
    EXPECT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0][0].toString().toStdString(), destination);
    EXPECT_THAT(log.lines(), Contains("<Info> progress: 12.5%"));
    EXPECT_EQ(linesOf("progress: "), std::vector({111, 111, 111}));
    EXPECT_EQ(linesOf("recording convert completed"), std::vector{114});
    EXPECT_EQ(linesOf("converting starting:" + destination), std::vector{105});
    EXPECT_TRUE(waitForExitTimer());
    EXPECT_EQ(linesOf("start exit timer"), std::vector{81});
}

TEST_F(Controller, ReportsAnErrorAndTakesNoNumberForProgress) {
    expectErrorLine("recording convert error:");
    initializeWithScript("progress nan\nerror -17\n");
    QSignalSpy finished(controller.get(), &MediaConverterController::convertFinished);
    QSignalSpy failed(controller.get(), &MediaConverterController::convertError);
    controller->startConversion();
    ASSERT_TRUE(waitForSignal(failed));
    EXPECT_EQ(finished.size(), 0);
    EXPECT_EQ(failed[0][0].toInt(), -17);
    EXPECT_EQ(failed[0][1].toString().toStdString(), destination);
    EXPECT_THAT(log.lines(),
                Contains("<Error> recording convert error:" + destination + ", error code:-17"));
    EXPECT_EQ(linesOf("recording convert error:"), std::vector{123});
    EXPECT_TRUE(waitForExitTimer());
    EXPECT_EQ(linesOf("start exit timer"), std::vector{81});
}

TEST_F(Controller, ShowsAStartThatFailsAsAFailedConversion) {
    for (const char* const script : {"result 0x1000", "result 0x0FFF\nprogress 1"}) {
        const bool refused = std::string(script) == "result 0x1000";
        expectErrorLine("Failed to start media convert.");
        expectErrorLine("recording convert error:");
        controller = std::make_shared<MediaConverterController>();
        initializeWithScript(script);
        QSignalSpy started(controller.get(), &MediaConverterController::convertStarted);
        QSignalSpy failed(controller.get(), &MediaConverterController::convertError);
        controller->startConversion();
        EXPECT_EQ(started.size(), refused ? 0 : 1);
        EXPECT_EQ(failed.size(), refused ? 1 : 0);
    }
}

TEST_F(Controller, DestroyedWhileTheEngineReportsGoesQuietlyOnItsOwnThread) {
    std::string script;
    for (int line = 0; line < 2000; ++line) {
        script += "progress 100\n";
    }
    for (int round = 0; round < 20; ++round) {
        controller = std::make_shared<MediaConverterController>();
        initializeWithScript(script);
        controller->startConversion();
        const std::weak_ptr<MediaConverterController> watched = controller;
        MediaConverterController::release(std::move(controller));
        EXPECT_TRUE(watched.expired());
        QCoreApplication::processEvents();
    }
}

TEST_F(Controller,
       PlaysTheDestinationAndOpensWhatIsChosenInTheDestinationsFolderAndNothingWhenCancelled) {
    OpenedUrls opened;
    initializeWithScript("");
    controller->play();
    EXPECT_EQ(linesOf("Open File:" + destination), std::vector{185});
    folder.write("mee ting.mp4", "film");
    for (const bool choose : {false, true}) {
        QTimer timer;
        QString shownFolder;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) {
                return;
            }
            timer.stop();
            shownFolder = dialog->directory().path() + '/';
            EXPECT_EQ(dialog->windowTitle(), "Open File");
            EXPECT_EQ(dialog->nameFilters(),
                      QStringList({"All Files (*.*)", "Text Files (*.mp4)"}));
            dialog->findChild<QLineEdit*>()->setText("mee ting.mp4");
            choose ? QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return)
                   : dialog->reject();
        });
        timer.start(10);
        controller->open();
        EXPECT_EQ(shownFolder.toStdString(), folder / "");
        EXPECT_EQ(opened.urls.size(), choose ? 2 : 1);
        EXPECT_EQ(linesOf("Open Dir:"), choose ? std::vector{177} : std::vector<int>());
    }
    EXPECT_EQ(opened.urls,
              QList<QUrl>(2, QUrl::fromLocalFile(QString::fromStdString(destination))));
}

} // namespace recordconverter::app::test

#include "ControllerTest.moc"

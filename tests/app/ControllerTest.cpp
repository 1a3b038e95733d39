#include "app/LocalizationStrings.h"
#include "app/MediaConverterController.h"
#include "recordconverter/WinConverterLog.h"
#include "support/FakeLibraries.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTranslator>
#include <gmock/gmock.h>

namespace recordconverter::app::test {
namespace {

using tarn::testing::expectErrorLine;
using tarn::testing::fakeEngineFolder;
using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

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

    void initialize(const std::vector<std::string>& arguments) {
        controller = std::make_shared<MediaConverterController>();
        controller->initialize(arguments, texts, std::make_shared<WinConverterLog>());
    }
    void initializeWithScript(const std::string& script) {
        initialize({"program", fakeEngineFolder("whole"), "", folder.write("source", script),
                    destination});
    }
    /// "line message" of each record so far, and forgets them.
    std::vector<std::string> takeLog() const {
        std::vector<std::string> lines;
        for (const auto& [line, parts] : log.take()) {
            lines.push_back(std::to_string(parts.line) + " " + parts.message);
        }
        return lines;
    }

    tarn::testing::HookedLog log;
    tarn::testing::TemporaryFolder folder;
    std::string destination = folder / "mee ting.mp4";
    QTranslator translator;
    std::shared_ptr<LocalizationStrings> texts = std::make_shared<LocalizationStrings>();
    std::shared_ptr<MediaConverterController> controller;
    const tarn::testing::FakeLibrary engine{"whole", "mediaconverter"};
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

TEST_F(Controller, TakesTextsPathsAndThemeFromItsArguments) {
    expectErrorLine("Can not load ");
    expectErrorLine("Failed to load ");
    initialize({"program", "/nowhere"});
    EXPECT_EQ(controller->property("convertingStartedText"), texts->text(0));
    EXPECT_EQ(controller->property("convertingFinishedText"), texts->text(1));
    EXPECT_EQ(controller->property("convertingErrorText"), texts->text(2));
    EXPECT_THAT(takeLog(), IsSupersetOf({"74 convert from: /nowhere", "75 convert to:"}));
    for (const auto& [theme, dark] : {std::pair{"2", true},
                                      {" 2x", true},
                                      {"1", false},
                                      {"abc", false},
                                      {"99999999999999999999", false}}) {
        initialize({"program", "/nowhere", "", "a", "b", theme});
        EXPECT_EQ(controller->property("isDark"), dark) << theme;
        const auto lines = takeLog();
        EXPECT_THAT(lines, Contains("152 theme is dark:" + std::to_string(dark)));
        EXPECT_THAT(lines, Not(Contains(StartsWith("74 "))));
    }
}

TEST_F(Controller, HandsTheExpandedSourcesOverAndFinishesJustShortOfAHundredPercent) {
    expectErrorLine("recording convert error:");
    const std::string first =
        folder.write("1.rec", "progress 99.9999\nprogress nan\nerror -17\nprogress 99.99999\n");
    initialize({"program", fakeEngineFolder("whole"), "", folder / ".rec|1:22", destination});
    QSignalSpy started(controller.get(), &MediaConverterController::convertStarted);
    QSignalSpy finished(controller.get(), &MediaConverterController::convertFinished);
    QSignalSpy failed(controller.get(), &MediaConverterController::convertError);
    controller->startConversion();
    ASSERT_TRUE(engine.waitForScripts());
    EXPECT_EQ(engine.calls(), "create\nmultiple 2 " + first + " " + (folder / "22.rec") + " -> " +
                                  destination + " 3 4\n");
    const QString file = QString::fromStdString(destination);
    EXPECT_EQ(started, QList<QVariantList>{{}});
    EXPECT_EQ(finished, QList<QVariantList>{{file}});
    EXPECT_EQ(failed, (QList<QVariantList>{{-17, file}}));
}

TEST_F(Controller, DestroyedWhileTheEngineReportsGoesQuietlyOnItsOwnThread) {
    std::string script;
    for (int line = 0; line < 2000; ++line) {
        script += "progress 100\n";
    }
    for (int round = 0; round < 20; ++round) {
        initializeWithScript(script);
        controller->startConversion();
        const std::weak_ptr<MediaConverterController> watched = controller;
        MediaConverterController::release(std::move(controller));
        EXPECT_TRUE(watched.expired());
        QCoreApplication::processEvents();
    }
}

TEST_F(Controller, PlaysTheDestinationAndOpensTheFileThatIsChosenInItsFolder) {
    OpenedUrls opened;
    initializeWithScript("");
    folder.write("mee ting.mp4", "film");
    controller->play();
    for (const bool choose : {false, true}) {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (auto* const dialog =
                    qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
                timer.stop();
                EXPECT_EQ(dialog->directory(), QDir(QString::fromStdString(folder.path())));
                EXPECT_EQ(dialog->windowTitle(), "Open File");
                EXPECT_EQ(dialog->nameFilters(),
                          QStringList({"All Files (*.*)", "Text Files (*.mp4)"}));
                auto* const name = dialog->findChild<QLineEdit*>();
                name->setText("mee ting.mp4");
                choose ? QTest::keyClick(name, Qt::Key_Return) : dialog->reject();
            }
        });
        timer.start(10);
        controller->open();
        EXPECT_FALSE(timer.isActive()) << "no dialog";
        EXPECT_EQ(opened.urls.size(), choose ? 2 : 1);
    }
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(destination));
    EXPECT_EQ(opened.urls, QList<QUrl>(2, url));
    // A dialog's answer has Qt's separators.
    EXPECT_THAT(takeLog(), IsSupersetOf({"185 Open File:" + destination,
                                         "177 Open Dir:" + url.toLocalFile().toStdString()}));
}

} // namespace recordconverter::app::test

#include "ControllerTest.moc"

#include "app/LocalizationStrings.h"
#include "app/MediaConverterController.h"
#include "recordconverter/WinConverterLog.h"
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

    void initialize(const std::string& sources) {
        const std::string engines = QApplication::applicationDirPath().toStdString();
        controller = std::make_shared<MediaConverterController>();
        controller->initialize(
            {"program", engines + "/fake-engines/whole", "", folder / sources, destination}, texts,
            std::make_shared<WinConverterLog>());
    }

    tarn::testing::HookedLog log;
    tarn::testing::TemporaryFolder folder;
    std::string destination = folder / "mee ting.mp4";
    QTranslator translator;
    std::shared_ptr<LocalizationStrings> texts = std::make_shared<LocalizationStrings>();
    std::shared_ptr<MediaConverterController> controller;
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

TEST_F(Controller, HandsTheExpandedSourcesOverAndFinishesJustShortOfAHundredPercent) {
    tarn::testing::expectErrorLine("recording convert error:");
    folder.write("1.rec", "progress 99.9999\nprogress nan\nprogress 99.99999\nerror -17\n");
    folder.write("22.rec", "");
    initialize(".rec|1:22");
    QSignalSpy started(controller.get(), &MediaConverterController::convertStarted);
    QSignalSpy finished(controller.get(), &MediaConverterController::convertFinished);
    QSignalSpy failed(controller.get(), &MediaConverterController::convertError);
    controller->startConversion();
    ASSERT_TRUE(failed.wait(60000));
    const QString file = QString::fromStdString(destination);
    EXPECT_EQ(started, QList<QVariantList>{{}});
    EXPECT_EQ(finished, QList<QVariantList>{{file}});
    EXPECT_EQ(failed, (QList<QVariantList>{{-17, file}}));
}

TEST_F(Controller, PlaysTheDestinationAndOpensTheFileThatIsChosenInItsFolder) {
    OpenedUrls opened;
    initialize("source");
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
}

} // namespace recordconverter::app::test

#include "ControllerTest.moc"

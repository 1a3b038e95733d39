#include "app/RunApplication.h"

#include "app/EntryContext.h"
#include "app/MediaConverterController.h"
#include "app/QtEnvironment.h"
#include "app/Translator.h"
#include "app/ViewMask.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "platform/Interrupt.h"
#include "platform/Text.h"
#include "recordconverter/ConverterLog.h"

#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QTimer>
#include <QUrl>
#include <QWindow>

#include <chrono>
#include <memory>

namespace recordconverter::app {
namespace {

using tarn::RootLoggerLevel::Debug;
using tarn::RootLoggerLevel::Error;

constexpr std::chrono::milliseconds kLongestFirstFrame{500};

void collectArguments(EntryContext& context, int argc, wchar_t** argv) {
    TARN_LOG(Debug, "argc:" << argc);
    for (int index = 0; index < argc; ++index) {
        context.arguments.push_back(tarn::platform::toUtf8(argv[index]));
        TARN_LOG(Debug, "configure:" << context.arguments.back());
    }
}

void installTranslator(EntryContext& context) {
    if (QTranslator* const translator = loadTranslator(context)) {
        QCoreApplication::installTranslator(translator);
    }
}

/// Binds the engine and starts it. Nothing may be thrown into Qt's event loop.
void startConversion(const EntryContext& context, MediaConverterController& controller) noexcept {
    try {
        controller.initialize(context.arguments, context.localizationStrings, context.converterLog);
        controller.startConversion();
    } catch (...) {
        TARN_LOG(Error, "unexpected error happen!");
        QCoreApplication::exit(-1);
    }
}

void cutToViews(QObject& window) {
    auto* const shown = qobject_cast<QWindow*>(&window);
    // Off the screen nobody clicks, and Qt warns of every mask there.
    if (shown != nullptr && QGuiApplication::platformName() != QStringLiteral("offscreen")) {
        new ViewMask(*shown); // the window's child
    }
}

/// Everything that needs the application object. The locals go in the reverse of their order: the
/// controller's reference first, then the QML engine.
int runWindow(EntryContext& context) {
    installTranslator(context);
    QQmlApplicationEngine engine;
    limitImportPaths(engine, context.arguments);
    auto controller = std::make_shared<MediaConverterController>();
    engine.rootContext()->setContextProperty(QStringLiteral("mediaConverterController"),
                                             controller.get());
    engine.load(QUrl(QStringLiteral("qrc:/MediaConverterNotification.qml")));
    if (engine.rootObjects().isEmpty()) {
        return -1;
    }
    QObject* const window = engine.rootObjects().constFirst();
    cutToViews(*window);
    restoreEnvironment();
    // The engine brings a hundred libraries along, which the first frame does not wait for. Begun
    // from the event loop, so that whoever ends that loop before then ends the run.
    QTimer begin;
    begin.setSingleShot(true);
    begin.callOnTimeout([&] { startConversion(context, *controller); });
    begin.start(kLongestFirstFrame); // a hidden window has no first frame
    QTimer firstFrame;
    firstFrame.setSingleShot(true);
    firstFrame.callOnTimeout([&] {
        if (begin.isActive()) {
            begin.start(0);
        }
    });
    // By name: the window's class is known to QML, and nothing else here needs its library.
    QObject::connect(window, SIGNAL(frameSwapped()), &firstFrame, SLOT(start()),
                     Qt::SingleShotConnection);
    const int result = QApplication::exec();
    MediaConverterController::release(std::move(controller));
    return result;
}

int run(EntryContext& context, int argc, wchar_t** argv) {
    context.converterLog->initialize(argc, argv);
    collectArguments(context, argc, argv);
    prepareQtEnvironment(context.arguments);
    logQtEnvironment();
    int result = 0;
    // A Qt that cannot start ends the process by abort().
    tarn::RootLogger::getInstance().flush();
    tarn::platform::callBeforeLeaving([] { tarn::RootLogger::getInstance().flush(); });
    {
        // Qt gets no command line: given no vector, it sets this copy of the count to 0 and reads
        // neither. The reference must stay valid as long as the application.
        int count = argc;
        QApplication application(count, nullptr);
        limitLibraryPaths(context.arguments);
        context.converterLog->installQtMessageHandler();
        result = runWindow(context);
    }
    tarn::RootLogger::getInstance().flush();
    return result;
}

} // namespace

int runApplication(EntryContext& context, int argc, wchar_t** argv) noexcept {
    try {
        return run(context, argc, argv);
    } catch (...) {
        TARN_LOG(Error, "unexpected error happen!");
        tarn::RootLogger::getInstance().flush();
        return -1;
    }
}

} // namespace recordconverter::app

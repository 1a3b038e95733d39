#include "app/RunApplication.h"

#include "app/EntryContext.h"
#include "app/MediaConverterController.h"
#include "app/QtEnvironment.h"
#include "app/Translator.h"
#include "logging/LogCall.h"
#include "logging/RootLogger.h"
#include "platform/Text.h"
#include "recordconverter/ConverterLog.h"

#include <QApplication>
#include <QEventLoop>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QTimer>
#include <QUrl>

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

/// The engine brings a hundred libraries along, which the window does not wait for.
void showFirstFrame(QObject* window) {
    QEventLoop loop;
    // By name: the window's class is known to QML, and nothing else here needs its library.
    QObject::connect(window, SIGNAL(frameSwapped()), &loop, SLOT(quit()));
    QTimer::singleShot(kLongestFirstFrame, &loop, &QEventLoop::quit); // it may be hidden
    loop.exec(QEventLoop::ExcludeUserInputEvents);
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
    controller->initialize(context.arguments, context.localizationStrings, context.converterLog,
                           [&] { showFirstFrame(engine.rootObjects().constFirst()); });
    controller->startConversion();
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

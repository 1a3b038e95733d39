#include "app/QtMessageHandler.h"

#include "log/LogCall.h"
#include "platform/Text.h"

#include <QString>

#include <string>

namespace recordconverter::app {
namespace {

tarn::RootLoggerLevel::Level levelOf(QtMsgType type) {
    switch (type) {
        case QtDebugMsg:
            return tarn::RootLoggerLevel::Debug;
        case QtInfoMsg:
            return tarn::RootLoggerLevel::Info;
        case QtWarningMsg:
            return tarn::RootLoggerLevel::Warn;
        case QtCriticalMsg:
        case QtFatalMsg:
            break;
    }
    return tarn::RootLoggerLevel::Error;
}

/// Qt writes the names of QML files in Latin-1; what names a file in UTF-8 stays as it is. In any
/// other form no personal string would be found in it.
std::string inUtf8(const char* name) {
    return tarn::platform::isValidUtf8(name) ? name : QString::fromLatin1(name).toStdString();
}

std::string prefixOf(const QMessageLogContext& context) {
    std::string prefix;
    if (context.file != nullptr) {
        prefix.append(inUtf8(context.file)).append(": ");
    }
    if (context.line != 0) {
        prefix.append(std::to_string(context.line)).append(", ");
    }
    if (context.function != nullptr) {
        prefix.append(inUtf8(context.function)).append(", ");
    }
    return prefix;
}

} // namespace

void qtMessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    TARN_LOG(levelOf(type), prefixOf(context) << message.toStdString());
}

void installQtMessageHandler() {
    qInstallMessageHandler(qtMessageHandler);
}

} // namespace recordconverter::app

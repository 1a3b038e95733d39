#include "app/QtMessageHandler.h"

#include "logging/LogCall.h"

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

std::string prefixOf(const QMessageLogContext& context) {
    std::string prefix;
    if (context.file != nullptr) {
        prefix.append(context.file).append(": ");
    }
    if (context.line != 0) {
        prefix.append(std::to_string(context.line)).append(", ");
    }
    if (context.function != nullptr) {
        prefix.append(context.function).append(", ");
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

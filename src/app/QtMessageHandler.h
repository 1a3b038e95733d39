#pragma once

#include <QtGlobal>

namespace recordconverter::app {

/// Writes Qt's messages into the log, from any thread, and does nothing else.
void qtMessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message);

void installQtMessageHandler();

} // namespace recordconverter::app

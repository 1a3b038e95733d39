#include "app/EntryPoint.h"

#include "app/EntryContext.h"
#include "app/LocalizationStrings.h"
#include "app/QtMessageHandler.h"
#include "app/RunApplication.h"
#include "logging/RootLogger.h"
#include "platform/Library.h"
#include "recordconverter/WinConverterLog.h"

int TarnEntryPoint(int argc, wchar_t** argv) {
    using namespace recordconverter;

    // The logger's thread and an engine that cannot be stopped run this code until the process
    // ends.
    tarn::platform::pinThisModule();
    app::EntryContext context;
    context.converterLog = std::make_shared<WinConverterLog>(&app::installQtMessageHandler);
    const int result = app::runApplication(context, argc, argv);
    context.converterLog->detach();
    context.converterLog.reset();
    context.localizationStrings.reset();
    // Letting go of the engine's libraries was logged, too.
    tarn::RootLogger::getInstance().flush();
    return result;
}

#include "app/EntryPoint.h"

#include "app/EntryContext.h"
#include "app/LocalizationStrings.h"
#include "app/QtMessageHandler.h"
#include "app/RunApplication.h"
#include "logging/RootLogger.h"
#include "recordconverter/WinConverterLog.h"

int TarnEntryPoint(int argc, wchar_t** argv) {
    using namespace recordconverter;

    app::EntryContext context;
    context.converterLog = std::make_shared<WinConverterLog>(&app::installQtMessageHandler);
    const int result = app::runApplication(context, argc, argv);
    context.converterLog.reset();
    context.localizationStrings.reset();
    // Letting go of the engine's libraries was logged, too.
    tarn::RootLogger::getInstance().flush();
    return result;
}

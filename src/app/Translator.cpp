#include "app/Translator.h"

#include "app/EntryContext.h"
#include "app/LocalizationStrings.h"
#include "client/ClientFolders.h"
#include "platform/KnownFolders.h"

#include <QLocale>
#include <QTranslator>

namespace recordconverter::app {

QTranslator* loadTranslator(EntryContext& context) {
    static const QLocale locale;
    static const QString fileName =
        QStringLiteral("tarn-windows-client.") + locale.name() + QStringLiteral(".qm");
    static const std::string folder = tarn::loader::dynamicDependenciesFolder() +
                                      tarn::platform::pathSeparator() + "translations";

    // Reachable for good: an application that is going down still asks its translators.
    static QTranslator* translator = nullptr;
    translator = new QTranslator;
    // Null, not merely empty: Qt then shortens the name at its delimiters until a file is there, so
    // that de_AT finds the file of de.
    const bool loaded = translator->load(
        QString::fromStdString(folder + tarn::platform::pathSeparator()) + fileName, QString(),
        QString(), QString());
    static_cast<void>(loaded);
    if (context.localizationStrings == nullptr) {
        context.localizationStrings = std::make_shared<LocalizationStrings>();
        context.localizationStrings->loadSourceTexts();
        context.localizationStrings->translateAll(*translator);
    }
    return translator;
}

} // namespace recordconverter::app

#include "app/LocalizationStrings.h"

#include <QTranslator>

namespace recordconverter::app {

void LocalizationStrings::loadSourceTexts() {
    // The files have the first text under a context of its own; the others must not be sought
    // there.
    static constexpr char kToast[] = "PopupConverterToast";
    static constexpr char kObject[] = "QObject";
    mSourceTexts.clear();
    mSourceTexts[0] = {
        QT_TRANSLATE_NOOP("PopupConverterToast", "Your recording is being prepared. Please wait."),
        kToast};
    mSourceTexts[1] = {QT_TRANSLATE_NOOP("QObject", "Your recording is ready."), kObject};
    mSourceTexts[2] = {QT_TRANSLATE_NOOP("QObject", "Your recording conversion has failed."),
                       kObject};
}

void LocalizationStrings::translateAll(QTranslator& translator) {
    for (const auto& [id, source] : mSourceTexts) {
        QString translated = translator.translate(source.context, source.text, nullptr, -1);
        mTexts[id] = translated.isEmpty() ? QString::fromUtf8(source.text) : std::move(translated);
    }
}

QString LocalizationStrings::text(int id) const {
    const auto found = mTexts.find(id);
    return found != mTexts.end() ? found->second : QString();
}

} // namespace recordconverter::app

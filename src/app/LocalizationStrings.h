#pragma once

#include <QString>

#include <cstdint>
#include <unordered_map>

class QTranslator;

namespace recordconverter::app {

/// The window's texts by number: 0 converting, 1 ready, 2 failed. GUI thread.
class LocalizationStrings {
public:
    /// Fills in the English texts and the contexts that translation files carry them under.
    void loadSourceTexts();
    /// Looks every source text up; one without a translation is shown in English.
    void translateAll(QTranslator& translator);
    /// Empty for an unknown number.
    QString text(int id) const;

private:
    struct SourceText {
        const char* text;
        const char* context;
    };

    std::unordered_map<std::int32_t, SourceText> mSourceTexts;
    std::unordered_map<std::int32_t, QString> mTexts;
};

} // namespace recordconverter::app

#include "app/LocalizationStrings.h"
#include "app/Toast.h"

#include <QDir>
#include <QTranslator>
#include <gtest/gtest.h>

#include <map>

namespace recordconverter::app::test {
namespace {

constexpr const char* kSources[] = {"Your recording is being prepared. Please wait.",
                                    "Your recording is ready.",
                                    "Your recording conversion has failed."};

/// A translation file that has each text under one context.
class ContextTranslator : public QTranslator {
public:
    explicit ContextTranslator(std::map<QString, QString> contexts)
        : mContexts(std::move(contexts)) {}
    QString translate(const char* context, const char* source, const char*, int) const override {
        const auto found = mContexts.find(source);
        return found != mContexts.end() && found->second == context ? QString("<%1>").arg(source)
                                                                    : QString();
    }

private:
    std::map<QString, QString> mContexts;
};

QStringList textsWith(QTranslator& translator) {
    LocalizationStrings strings;
    strings.loadSourceTexts();
    strings.translateAll(translator);
    EXPECT_EQ(strings.text(7), QString());
    return {strings.text(0), strings.text(1), strings.text(2)};
}

} // namespace

TEST(LocalizationStrings, AreEnglishWithoutATranslationAndEmptyBeforeTheyAreLoaded) {
    QTranslator empty;
    EXPECT_EQ(textsWith(empty), QStringList({kSources[0], kSources[1], kSources[2]}));
    EXPECT_EQ(LocalizationStrings().text(0), QString());
}

TEST(LocalizationStrings, AreTranslatedUnderTheirOwnContextsOnly) {
    ContextTranslator right(
        {{kSources[0], "PopupConverterToast"}, {kSources[1], "QObject"}, {kSources[2], "QObject"}});
    for (const QString& text : textsWith(right)) {
        EXPECT_TRUE(text.startsWith('<')) << text.toStdString();
    }
    ContextTranslator wrong({{kSources[0], "QObject"},
                             {kSources[1], "PopupConverterToast"},
                             {kSources[2], "PopupConverterToast"}});
    EXPECT_EQ(textsWith(wrong), QStringList({kSources[0], kSources[1], kSources[2]}));
}

TEST(Translations, ComeInEveryLanguageWithAllTextsAndFitTheToastWhole) {
    const QStringList names =
        QDir(QStringLiteral(RUNTIME_FOLDER "/translations")).entryList({"*.qm"});
    const QStringList expected{"ar",    "cs",    "da",    "de",    "es",   "fr", "he", "hu",
                               "it",    "ja",    "ko",    "nb",    "nl",   "pl", "pt", "pt_BR",
                               "ro",    "pt_PT", "ru",    "sv",    "tr",   "uk", "vi", "zh",
                               "zh_CN", "zh_HK", "zh_MO", "zh_SG", "zh_TW"};
    EXPECT_EQ(names.size(), expected.size());
    Toast toast;
    for (const char* const view : {"viewStart", "viewFinish", "viewError"}) {
        toast.showAndSettle(view);
        for (const QString& locale : expected) {
            QTranslator translator;
            ASSERT_TRUE(translator.load(
                QStringLiteral(RUNTIME_FOLDER "/translations/tarn-windows-client.%1.qm")
                    .arg(locale)))
                << locale.toStdString();
            const QStringList texts = textsWith(translator);
            for (int id = 0; id < 3; ++id) {
                EXPECT_NE(texts[id], kSources[id]) << locale.toStdString();
            }
            toast.controller.startedText = texts[0];
            toast.controller.finishedText = texts[1];
            toast.controller.errorText = texts[2];
            emit toast.controller.infoChanged();
            toast.grab();
            const QQuickItem* const text = toast.row(view)[1];
            EXPECT_FALSE(text->property("truncated").toBool())
                << locale.toStdString() << ' ' << view;
            EXPECT_LE(text->property("contentHeight").toDouble(), 68);
        }
    }
}

} // namespace recordconverter::app::test

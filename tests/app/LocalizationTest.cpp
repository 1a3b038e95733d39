#include "app/LocalizationStrings.h"
#include "app/Toast.h"

#include <QDir>
#include <QTranslator>

namespace recordconverter::app::test {
namespace {

const QStringList kEnglish{"Your recording is being prepared. Please wait.",
                           "Your recording is ready.", "Your recording conversion has failed."};

QStringList textsWith(QTranslator& translator) {
    LocalizationStrings strings;
    strings.loadSourceTexts();
    strings.translateAll(translator);
    return {strings.text(0), strings.text(1), strings.text(2)};
}

} // namespace

TEST(Translations, ComeInEveryLanguageWithAllTextsAndFitTheToastWhole) {
    const QStringList files = QDir(RUNTIME_FOLDER "/translations").entryList({"*.qm"});
    const QString locales =
        "ar cs da de es fr he hu it ja ko nb nl pl pt pt_BR pt_PT ro ru sv tr uk vi "
        "zh zh_CN zh_HK zh_MO zh_SG zh_TW";
    EXPECT_EQ(QString(files.join(' ')).remove("tarn-windows-client.").remove(".qm"), locales);
    Toast toast;
    for (const QString view : {"viewStart", "viewFinish", "viewError"}) {
        toast.showAndSettle(view);
        for (const QString& file : files) {
            SCOPED_TRACE(file.toStdString());
            QTranslator translator;
            ASSERT_TRUE(translator.load(file, RUNTIME_FOLDER "/translations"));
            const QStringList texts = textsWith(translator);
            for (int id = 0; id < 3; ++id) {
                EXPECT_NE(texts[id], kEnglish[id]);
                toast.controller.setProperty(kTextProperties[id], texts[id]);
            }
            toast.window->grabWindow();
            const QQuickItem* const text = toast.row(view)[1];
            EXPECT_FALSE(text->property("truncated").toBool());
            EXPECT_LE(text->property("contentHeight").toDouble(), 68);
        }
    }
}

} // namespace recordconverter::app::test

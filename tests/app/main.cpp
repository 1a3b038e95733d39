#include "platform/Library.h"
#include "platform/Text.h"

#include <QApplication>
#include <gtest/gtest.h>

/// Tests of the window: a real one, on the offscreen platform and the software renderer unless the
/// environment says otherwise, with what Qt loads taken from the runtime folder as in a real run.
int main(int argc, char** argv) {
    for (const auto& [name, value] :
         {std::pair{"QT_QPA_PLATFORM", "offscreen"}, std::pair{"QT_QUICK_BACKEND", "software"},
          std::pair{"QT_QUICK_CONTROLS_STYLE", "Basic"}, std::pair{"QSG_RENDER_LOOP", "basic"},
          std::pair{"QT_QPA_FONTDIR", FONT_FOLDER}}) {
        if (*value != '\0' && !qEnvironmentVariableIsSet(name)) {
            qputenv(name, value);
        }
    }
    QCoreApplication::setLibraryPaths({QStringLiteral(RUNTIME_FOLDER)});
    tarn::platform::addLibraryFolder(tarn::platform::toWide(RUNTIME_FOLDER));
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

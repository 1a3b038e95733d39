#include "app/EntryContext.h"
#include "app/QtMessageHandler.h"
#include "app/RunApplication.h"
#include "recordconverter/ConverterLog.h"
#include "support/LogRecorder.h"

#include <QString>
#include <gmock/gmock.h>

#include <stdexcept>

namespace recordconverter::app::test {

TEST(RunApplication, TurnsAnyExceptionIntoOneErrorLineAndMinusOne) {
    class FailingLog : public ConverterLog {
        void initialize(int, wchar_t**) override { throw std::runtime_error("no folder"); }
        void attach(const std::string&) override {}
        void installQtMessageHandler() override {}
        void detach() override {}
    };
    const tarn::testing::HookedLog log;
    tarn::testing::expectErrorLine("unexpected error happen!");
    EntryContext context;
    context.converterLog = std::make_shared<FailingLog>();
    EXPECT_EQ(runApplication(context, 0, nullptr), -1);
    EXPECT_THAT(log.lines(), testing::ElementsAre("<Error> unexpected error happen!"));
}

TEST(QtMessageHandler, WritesEachTypeAtItsLevelWithWhatIsKnownOfThePlace) {
    const struct {
        QtMsgType type;
        QMessageLogContext context;
        std::string line;
    } messages[] = {
        {QtDebugMsg, {}, "<Debug> Grüße"},
        {QtInfoMsg,
         {"/home/J\xF6rg/a.qml", 0, nullptr, "default"},
         "<Info> /home/Jörg/a.qml: Grüße"},
        {QtWarningMsg,
         {"/home/Jörg/a.qml", 7, "f\xFC", "default"},
         "<Warn> /home/Jörg/a.qml: 7, fü, Grüße"},
        {QtCriticalMsg, {nullptr, 7, nullptr, "default"}, "<Error> 7, Grüße"},
        {QtFatalMsg, {nullptr, 0, "f", "default"}, "<Error> f, Grüße"},
    };
    for (const auto& message : messages) {
        const tarn::testing::HookedLog log;
        if (message.line.starts_with("<Error> ")) {
            tarn::testing::expectErrorLine(message.line.substr(8));
        }
        qtMessageHandler(message.type, message.context, QStringLiteral("Grüße"));
        EXPECT_THAT(log.lines(), testing::ElementsAre(message.line));
    }
}

} // namespace recordconverter::app::test

#include "app/EntryContext.h"
#include "app/RunApplication.h"
#include "recordconverter/ConverterLog.h"
#include "support/ErrorWatch.h"
#include "support/RecordingLogHook.h"

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
    const tarn::testing::RecordingLogHook log{tarn::testing::noteErrorLine};
    tarn::testing::expectErrorLine("unexpected error happen!");
    EntryContext context;
    context.converterLog = std::make_shared<FailingLog>();
    EXPECT_EQ(runApplication(context, 0, nullptr), -1);
    EXPECT_THAT(log.lines(), testing::ElementsAre("<Error> unexpected error happen!"));
}

} // namespace recordconverter::app::test

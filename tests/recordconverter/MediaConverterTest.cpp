#include "logging/RootLogger.h"
#include "recordconverter/ConverterTraceSink.h"
#include "recordconverter/MediaConverter.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "threading/Assertion.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <thread>

namespace recordconverter {
namespace {

using ::testing::ElementsAre;

/// A session that the test itself reports to.
class Session : public MediaConverter {
public:
    using MediaConverter::MediaConverter;
    void loadEngine() override {}
};

/// Keeps the events; progress with whether the source exists then.
class Observer : public IMediaConverterCallback {
public:
    Observer(std::string source, bool isThrowing)
        : mSource(std::move(source)), mIsThrowing(isThrowing) {}
    ~Observer() override { onDestroyed(); }

    void onConvertStarted(const std::string&) override {}
    void onConvertProgress(float percent, const std::string& destination) override {
        const bool isThere = std::filesystem::exists(mSource);
        add(std::to_string(percent) + (isThere ? ", there" : ", gone"), destination);
    }
    void onConvertError(std::int32_t code, const std::string& destination) override {
        add("error " + std::to_string(code), destination);
    }
    std::vector<std::string> heard;
    std::function<void()> onDestroyed = [] {};

private:
    void add(const std::string& event, const std::string& destination) {
        heard.push_back(event + " " + destination);
        if (mIsThrowing) {
            throw 1;
        }
    }
    std::string mSource;
    bool mIsThrowing;
};

TEST(MediaConverter, DeletesTheSourceOnceAllHaveHeardOfTheEndAlsoAfterOneThatThrows) {
    const tarn::testing::HookedLog log;
    tarn::testing::expectErrorLine("A conversion observer failed.");
    const tarn::testing::TemporaryFolder folder;
    const std::string source = folder.write("a.rec", "");
    const auto throwing = std::make_shared<Observer>(source, true);
    const auto next = std::make_shared<Observer>(source, false);
    Session session("", {folder.write("0.rec", ""), source, folder.write("b.rec", "")}, "to");
    session.addObserver(throwing);
    session.addObserver(next);
    session.addObserver(throwing);
    session.addObserver(std::make_shared<Observer>("gone by itself", true));
    for (const float percent : {99.99F, std::nanf(""), -HUGE_VALF}) {
        session.OnProgress(percent);
    }
    session.OnError(-17);
    session.OnProgress(100);
    EXPECT_THAT(next->heard, ElementsAre("99.989998, there to", "nan, there to", "-inf, there to",
                                         "error -17 to", "100.000000, there to"));
    EXPECT_EQ(throwing->heard, next->heard);
    EXPECT_EQ(log.lines(), std::vector<std::string>(5, "<Error> A conversion observer failed."));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(MediaConverter, MayBeGivenAnObserverByTheDestructorOfAnotherOnAnyThread) {
    Session session("", {}, "to");
    const auto keeper = std::make_shared<Observer>("", false);
    for (int round = 0; round < 2000; ++round) {
        auto dying = std::make_shared<Observer>("", false);
        session.addObserver(dying);
        dying->onDestroyed = [&] { session.addObserver(keeper); };
        std::thread releasing([&] { dying.reset(); });
        session.addObserver(keeper);
        releasing.join();
    }
    session.OnError(1);
    EXPECT_THAT(keeper->heard, ElementsAre("error 1 to"));
}

TEST(ConverterTraceSink, MapsTheEnginesLevelsAndReportsAnUnknownOne) {
    // The root logger keeps its sinks for ever.
    const auto log = std::make_shared<tarn::testing::LogRecorder>();
    tarn::RootLogger::getInstance().registerLogger(log);
    tarn::RootLogger::getInstance().flush();
    tarn::testing::expectErrorLine("at 0");
    std::vector<std::string> assertions;
    tarn::setAssertionDetailHandler(
        [&](const std::string&, const std::string&, std::uint32_t, const std::string&,
            const std::string& message) { assertions.push_back(message); });
    ConverterTraceSink sink;
    for (const std::uint32_t level : {0U, 1U, 2U, 3U, 4U, 7U}) {
        EXPECT_EQ(sink.OnTrace(level, ("at " + std::to_string(level)).c_str()), 0);
    }
    sink.OnTrace(2, nullptr);
    tarn::setAssertionDetailHandler({});
    tarn::RootLogger::getInstance().flush();
    std::vector<std::string> lines;
    for (const auto& [line, record] : log->take()) {
        if (record.file == "ZEL") {
            lines.push_back(record.level + " " + record.message);
        }
    }
    // Trace and Unknown do not pass the root logger's gate.
    EXPECT_THAT(lines, ElementsAre("Error at 0", "Warn at 1", "Info at 2", "Debug at 3", "Info "));
    EXPECT_THAT(assertions, ElementsAre("Could not map ZEL log level to tarn log level"));
}

} // namespace
} // namespace recordconverter

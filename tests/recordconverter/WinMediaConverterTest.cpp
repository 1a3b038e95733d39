#include "platform/Library.h"
#include "recordconverter/ConverterLog.h"
#include "recordconverter/WinMediaConverter.h"
#include "support/FakeLibraries.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utils/FileUtils.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <mutex>

namespace recordconverter {
namespace {

using tarn::testing::expectErrorLine;
using tarn::testing::fakeEngineFolder;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

const std::string kEngineName = tarn::platform::libraryFileName("mediaconverter");

/// Counts what the binding asks of the trace bridge.
class AttachCounter : public ConverterLog {
public:
    void initialize(int, wchar_t**) override {}
    void attach(const std::string& folder) override { folders.push_back(folder); }
    void installQtMessageHandler() override {}
    void detach() override {}

    std::vector<std::string> folders;
};

/// Keeps the events; progress with the number of sources that exist then.
class RecordingObserver : public IMediaConverterCallback {
public:
    explicit RecordingObserver(std::vector<std::string> sources) : mSources(std::move(sources)) {}

    void onConvertStarted(const std::string& destination) override { add("started", destination); }
    void onConvertProgress(float percent, const std::string& destination) override {
        const auto left = std::ranges::count_if(
            mSources, [](const auto& path) { return tarn::FileUtils().exists(path); });
        add(std::to_string(percent) + ", files " + std::to_string(left), destination);
    }
    void onConvertError(std::int32_t code, const std::string& destination) override {
        add("error " + std::to_string(code), destination);
    }

    std::vector<std::string> heard() const {
        const std::lock_guard lock(mMutex);
        return mHeard;
    }

private:
    void add(const std::string& event, const std::string& destination) {
        EXPECT_TRUE(destination.ends_with("out.mp4")) << destination;
        const std::lock_guard lock(mMutex);
        mHeard.push_back(event);
    }

    std::vector<std::string> mSources;
    mutable std::mutex mMutex;
    std::vector<std::string> mHeard;
};

class WinMediaConverterTest : public ::testing::Test {
protected:
    /// Converts `sources` with a variant of the fake engine, waits until its script is done and
    /// gives what the observer heard.
    std::vector<std::string> convert(const std::string& variant,
                                     const std::vector<std::string>& sources) {
        WinMediaConverter session(fakeEngineFolder(variant), sources, destination, trace);
        const auto observer = std::make_shared<RecordingObserver>(sources);
        session.addObserver(observer);
        const tarn::testing::FakeLibrary engine(variant, "mediaconverter");
        session.loadEngine();
        session.startConvert(sources, destination, 3, 4);
        EXPECT_TRUE(engine.waitForScripts());
        calls = engine.calls();
        return observer->heard();
    }

    const tarn::testing::HookedLog log;
    tarn::testing::TemporaryFolder folder;
    std::string destination = folder / "out.mp4";
    std::shared_ptr<AttachCounter> trace = std::make_shared<AttachCounter>();
    std::string calls;
};

TEST_F(WinMediaConverterTest, DeletesTheSourceWhenTheObserversHaveHeardOfTheEndAndNeverBefore) {
    const std::string only = folder.write(
        "a.rec", "destroy\nprogress 99.99\nprogress nan\nprogress -inf\nerror -17\nprogress 100\n");
    EXPECT_THAT(convert("whole", {only}),
                UnorderedElementsAre("started", "99.989998, files 1", "nan, files 1",
                                     "-inf, files 1", "error -17", "100.000000, files 1"));
    EXPECT_FALSE(tarn::FileUtils().exists(only));
    EXPECT_EQ(calls, "create\nsingle " + only + " -> " + destination + " 3 4\n");
    EXPECT_THAT(log.lines(), Contains("<Debug> media converter instance is created successfully."));
    EXPECT_EQ(log.lines().back(), "<Info> FreeLibrary successfully");
    EXPECT_THAT(trace->folders, ElementsAre(fakeEngineFolder("whole")));
}

TEST_F(WinMediaConverterTest, StartsNothingWithoutSourcesOrAnInstance) {
    expectErrorLine("Failed to start media convert: src file number error");
    expectErrorLine("Failed to create media converter instance.");
    EXPECT_THAT(convert("whole", {}), IsEmpty());
    EXPECT_THAT(convert("no-instance", {folder.write("a.rec", "progress 100")}), IsEmpty());
    EXPECT_EQ(calls, "create\n");
    EXPECT_THAT(log.lines(), IsSupersetOf({"<Error> Failed to start media convert: src file number "
                                           "error",
                                           "<Error> Failed to create media converter instance."}));
}

TEST_F(WinMediaConverterTest, WithoutTheLibraryOrItsFactoryIsUnboundAndStillTraced) {
    const std::string missing = "Can not load " + kEngineName;
    const std::string factory =
        "Can not open CreateMediaConverter in " + kEngineName + ", errorCode: ";
    for (const auto& error : {missing, factory}) {
        log.take();
        expectErrorLine(error);
        expectErrorLine("Failed to load " + kEngineName);
        expectErrorLine("Failed to create media converter instance.");
        const std::string place = error == missing ? folder.path() : fakeEngineFolder("no-factory");
        {
            WinMediaConverter session(place, {}, destination, trace);
            session.loadEngine();
            EXPECT_FALSE(session.isBound());
            const std::string last = log.lines().back();
            EXPECT_THAT(last, StartsWith("<Error> " + error));
            EXPECT_EQ(std::isdigit(last.back()) != 0, error == factory) << "the system's number";
            session.startConvert({"a"}, destination, 3, 4);
            EXPECT_EQ(log.lines().back(), "<Error> Failed to create media converter instance.");
        }
        EXPECT_EQ(trace->folders.back(), place);
        EXPECT_THAT(log.lines(),
                    Contains("<Info> FreeLibrary successfully").Times(error == factory ? 1 : 0));
    }
}

TEST_F(WinMediaConverterTest, AnObserverThatThrowsHarmsNeitherTheNextOneNorTheEngine) {
    class Throwing : public RecordingObserver {
    public:
        using RecordingObserver::RecordingObserver;
        void onConvertProgress(float, const std::string&) override { throw 1; }
    };
    expectErrorLine("A conversion observer failed.");
    const std::string only = folder.write("a.rec", "progress 100");
    WinMediaConverter session(fakeEngineFolder("no-stop"), {only}, destination, nullptr);
    const auto throwing = std::make_shared<Throwing>(std::vector{only});
    const auto next = std::make_shared<RecordingObserver>(std::vector{only});
    session.addObserver(throwing);
    session.addObserver(next);
    EXPECT_TRUE(session.stopConversions(0)) << "nothing is loaded";
    session.loadEngine();
    session.startConvert({only}, destination, 3, 4);
    ASSERT_TRUE(tarn::testing::FakeLibrary("no-stop", "mediaconverter").waitForScripts());
    EXPECT_FALSE(session.stopConversions(20000)) << "there is no such export";
    EXPECT_THAT(log.lines(), Contains("<Error> A conversion observer failed."));
    EXPECT_THAT(next->heard(), Contains("100.000000, files 1"));
    EXPECT_FALSE(tarn::FileUtils().exists(only));
}

} // namespace
} // namespace recordconverter

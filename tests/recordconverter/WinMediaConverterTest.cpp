#include "platform/Library.h"
#include "recordconverter/EngineFixture.h"
#include "recordconverter/WinMediaConverter.h"

#include <gmock/gmock.h>

namespace recordconverter {
namespace {

using tarn::testing::fakeEngineFolder;
using tarn::testing::FakeLibrary;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kEngineName = tarn::platform::libraryFileName("mediaconverter");

/// Counts what the binding asks of the trace bridge.
class AttachCounter : public ConverterLog {
public:
    void initialize(int, wchar_t**) override {}
    void attach(const std::string& folder) override { folders.push_back(folder); }
    void installQtMessageHandler() override {}

    std::vector<std::string> folders;
};

class WinMediaConverterTest : public EngineFixture {
protected:
    /// Converts `sources` with a variant of the fake engine and waits until its script is done.
    void convert(const std::string& variant, const std::vector<std::string>& sources) {
        WinMediaConverter session(fakeEngineFolder(variant), sources, destination, trace);
        observer = std::make_shared<RecordingObserver>(sources);
        session.addObserver(observer);
        const FakeLibrary engine(variant, "mediaconverter");
        session.loadEngine();
        session.startConvert(sources, destination, 3, 4);
        ASSERT_TRUE(engine.waitForScripts());
        calls = engine.calls();
    }

    std::string destination = mFolder / "out.mp4";
    std::shared_ptr<AttachCounter> trace = std::make_shared<AttachCounter>();
    std::shared_ptr<RecordingObserver> observer;
    std::string calls;
};

TEST_F(WinMediaConverterTest, ForwardsEventsAndDeletesTheSourceAfterTheObserversHeardOfTheEnd) {
    const std::string only = source("a.rec", "destroy\nprogress 0\nprogress 99.99\nprogress 100\n");
    convert("whole", {only});
    EXPECT_EQ(calls, "create\nsingle " + only + " -> " + destination + " 3 4\n");
    EXPECT_THAT(observer->heard(), AllOf(Contains("started " + destination),
                                         Contains("progress 99.99 " + destination + " files 1"),
                                         Contains("progress 100 " + destination + " files 1")));
    EXPECT_EQ(observer->heard().size(), 4U);
    EXPECT_FALSE(exists(only));
    EXPECT_THAT(mLog.lines(),
                AllOf(Contains("<Debug> media converter instance is created successfully."),
                      Contains("<Info> FreeLibrary successfully")));
    EXPECT_THAT(trace->folders, ElementsAre(fakeEngineFolder("whole")));
}

TEST_F(WinMediaConverterTest, HandsSeveralSourcesOverInOrderAndDeletesThemAll) {
    const std::vector<std::string> sources{source("b \xC3\xBC.rec", "progress 100\nprogress 100"),
                                           source("a.rec"), source("c.rec")};
    convert("whole", sources);
    EXPECT_EQ(calls, "create\nmultiple 3 " + sources[0] + " " + sources[1] + " " + sources[2] +
                         " -> " + destination + " 3 4\n");
    EXPECT_THAT(observer->heard(), AllOf(Contains("progress 100 " + destination + " files 3"),
                                         Contains("progress 100 " + destination + " files 0")));
    for (const std::string& path : sources) {
        EXPECT_FALSE(exists(path)) << path;
    }
}

TEST_F(WinMediaConverterTest, KeepsTheSourceWhateverElseTheEngineReports) {
    const std::string only =
        source("a.rec", "progress 99.99\nprogress nan\nprogress -100\nprogress -inf\nerror -17\n");
    convert("whole", {only});
    EXPECT_THAT(observer->heard(), Contains("error -17 " + destination));
    EXPECT_TRUE(exists(only));
}

TEST_F(WinMediaConverterTest, TakesAResultForAFailureByItsBits12To15) {
    struct Case {
        std::string result;
        std::string error;
    };
    const std::vector<Case> cases{{"0x0FFF", ""},
                                  {"0x7FFF0FFF", ""},
                                  {"-100", "Failed to start media convert: src file number error"},
                                  {"0x1000", "Failed to start media convert."},
                                  {"-1", "Failed to start media convert."}};
    for (const auto& [result, error] : cases) {
        SCOPED_TRACE(result);
        const std::string only = source("a.rec", "result " + result + "\nprogress 50");
        convert("whole", {only});
        if (error.empty()) {
            EXPECT_THAT(observer->heard(), Contains("started " + destination));
        } else {
            EXPECT_THAT(observer->heard(), IsEmpty());
            EXPECT_TRUE(mLog.hasError(error));
            EXPECT_THAT(mLog.lines(), Contains("<Error> " + error));
        }
        EXPECT_TRUE(exists(only));
    }
}

TEST_F(WinMediaConverterTest, StartsNothingWithoutSourcesOrAnInstance) {
    convert("whole", {});
    EXPECT_EQ(calls, "create\n");
    EXPECT_TRUE(mLog.hasError("Failed to start media convert: src file number error"));
    EXPECT_THAT(observer->heard(), IsEmpty());
    const std::string only = source("a.rec", "progress 100");
    for (const std::string variant : {"failing-factory", "no-instance"}) {
        SCOPED_TRACE(variant);
        convert(variant, {only});
        EXPECT_EQ(calls, "create\n");
        EXPECT_THAT(observer->heard(), IsEmpty());
    }
    EXPECT_TRUE(mLog.hasError("Failed to create media converter instance."));
    EXPECT_EQ(mLog.count("Failed to create media converter instance."), 2);
    EXPECT_EQ(mLog.count("media converter instance is created successfully."), 1);
    EXPECT_TRUE(exists(only));
}

TEST_F(WinMediaConverterTest, AnEngineFolderWithoutTheLibraryIsLoggedAndStillTraced) {
    {
        WinMediaConverter session(mFolder.path(), {}, destination, trace);
        session.loadEngine();
        EXPECT_FALSE(session.isBound());
        EXPECT_TRUE(mLog.hasError("Failed to load " + kEngineName));
        EXPECT_TRUE(mLog.hasError("Can not load " + kEngineName));
        EXPECT_EQ(mLog.count("Can not load " + kEngineName), 1);
        session.startConvert({"a"}, destination, 3, 4);
        EXPECT_TRUE(mLog.hasError("Failed to create media converter instance."));
    }
    EXPECT_THAT(trace->folders, ElementsAre(mFolder.path()));
    EXPECT_EQ(mLog.count("FreeLibrary successfully"), 0);
}

TEST_F(WinMediaConverterTest, ALibraryWithoutTheFactoryStaysLoadedAndUnbound) {
    {
        WinMediaConverter session(fakeEngineFolder("no-factory"), {}, destination, trace);
        session.loadEngine();
        EXPECT_FALSE(session.isBound());
        const std::string text =
            "Can not open CreateMediaConverter in " + kEngineName + ", errorCode: ";
        EXPECT_TRUE(mLog.hasError(text));
        EXPECT_EQ(mLog.records().back().message.find_first_not_of("0123456789", text.size()),
                  std::string::npos);
        EXPECT_EQ(mLog.count("FreeLibrary successfully"), 0);
    }
    EXPECT_EQ(mLog.count("FreeLibrary successfully"), 1);
}

TEST_F(WinMediaConverterTest, AnObserverThatThrowsHarmsNeitherTheNextOneNorTheEngine) {
    class Throwing : public RecordingObserver {
        void onConvertProgress(float, const std::string&) override { throw 1; }
    };
    const std::string only = source("a.rec", "progress 100");
    WinMediaConverter session(fakeEngineFolder("whole"), {only}, destination, nullptr);
    const auto throwing = std::make_shared<Throwing>();
    observer = std::make_shared<RecordingObserver>();
    session.addObserver(throwing);
    session.addObserver(observer);
    session.loadEngine();
    session.startConvert({only}, destination, 3, 4);
    ASSERT_TRUE(FakeLibrary("whole", "mediaconverter").waitForScripts());
    EXPECT_TRUE(mLog.hasError("A conversion observer failed."));
    EXPECT_THAT(observer->heard(), Contains("progress 100 " + destination + " files 0"));
    EXPECT_FALSE(exists(only));
}

TEST_F(WinMediaConverterTest, StopsTheEngineThroughItsOptionalExportOnly) {
    for (const std::string variant : {"whole", "no-stop"}) {
        SCOPED_TRACE(variant);
        const std::string only = source("a.rec", "progress 1");
        WinMediaConverter session(fakeEngineFolder(variant), {only}, destination, nullptr);
        EXPECT_TRUE(session.stopConversions(0)) << "nothing is loaded";
        session.loadEngine();
        session.startConvert({only}, destination, 3, 4);
        const FakeLibrary engine(variant, "mediaconverter");
        ASSERT_TRUE(engine.waitForScripts());
        EXPECT_EQ(session.stopConversions(20000), variant == "whole");
    }
}

} // namespace
} // namespace recordconverter

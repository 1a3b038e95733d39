// Folders, texts and thread descriptions as Windows has them.
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "platform/ThreadDescription.h"
#include "platform/windows/Kernel32.h"
#include "support/LogRecorder.h"
#include "support/Signal.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <thread>

namespace tarn::platform {
namespace {

TEST(WindowsFolders, TellAbsolutePathsFromOthers) {
    for (const char* path :
         {"C:\\", "c:/x", "\\\\server\\share", "//server/share", "\\\\?\\C:\\x"}) {
        EXPECT_TRUE(isAbsolutePath(path)) << path;
    }
    for (const char* path : {"", "C:", "C:x", "\\x", "/x", "x\\y", "1:\\x", "\\\\"}) {
        EXPECT_FALSE(isAbsolutePath(path)) << path;
    }
}

TEST(WindowsEnvironment, ReadsWideValuesOfAnyLength) {
    const std::wstring value = L"\\Users\\Größe 会議 😀" + std::wstring(5000, L'x');
    ASSERT_EQ(_wputenv_s(L"HOMEPATH", value.c_str()), 0);
    EXPECT_EQ(homePath(), toUtf8(value));
    ASSERT_EQ(_wputenv_s(L"HOMEPATH", L""), 0) << "takes the variable away";
    EXPECT_EQ(homePath(), std::nullopt);
    EXPECT_EQ(userName().value().find('\0'), std::string::npos);
}

TEST(WindowsText, CarriesSurrogatePairsAndIgnoresCaseBeyondAscii) {
    EXPECT_EQ(toWide("a\xF0\x9F\x98\x80z"), L"a\xD83D\xDE00z");
    EXPECT_TRUE(startsWithIgnoringCase(L"C:\\GRÖSSE\\x", L"c:\\grösse\\"));
}

TEST(WindowsThreadDescription, IsSeenFromAnotherThread) {
    tarn::testing::Signal named;
    tarn::testing::Signal read;
    std::uint32_t id = 0;
    std::thread thread([&] {
        setThreadDescription("RootLogger 会議");
        id = threadId();
        named.set();
        read.wait();
    });
    named.wait();
    EXPECT_EQ(getThreadDescription(id), "RootLogger 会議");
    EXPECT_NE(getThreadDescription(threadId()), "RootLogger 会議");
    read.set();
    thread.join();
    EXPECT_EQ(getThreadDescription(0xFFFFFFFC), "") << "no such thread";
}

TEST(WindowsThreadDescription, AMissingFunctionIsLoggedUnderItsLine) {
    const tarn::testing::HookedLog log;
    tarn::testing::expectErrorLine("");
    EXPECT_EQ(loadKernel32Function("NoSuchFunction"), nullptr);
    EXPECT_THAT(log.lines(),
                ::testing::ElementsAre("<Error> Can't load NoSuchFunction from Kernel32"));
    EXPECT_EQ(log.records().at(0).second.line, 75);
}

} // namespace
} // namespace tarn::platform

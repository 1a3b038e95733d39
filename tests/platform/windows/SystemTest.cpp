// Identity, folders, texts and thread descriptions as Windows has them.
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "platform/ThreadDescription.h"
#include "platform/windows/Kernel32.h"
#include "support/RecordingLogHook.h"
#include "support/Signal.h"

#include <gmock/gmock.h>
#include <windows.h>

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
    EXPECT_EQ(environmentVariable("RECORD_CONVERTER_NOT_SET"), std::nullopt);
}

TEST(WindowsIdentity, IsWhatTheSystemSays) {
    EXPECT_FALSE(computerName().value().empty());
    EXPECT_FALSE(userName().value().empty());
    EXPECT_EQ(userName().value().find('\0'), std::string::npos);
    EXPECT_EQ(processId(), GetCurrentProcessId());
    EXPECT_TRUE(programFile().ends_with("windows_platform_test.exe")) << programFile();
    std::uint32_t other = threadId();
    std::thread([&] { other = threadId(); }).join();
    EXPECT_NE(other, threadId());
}

TEST(WindowsText, CarriesSurrogatePairsAndReplacesLoneOnes) {
    EXPECT_EQ(toWide("a\xF0\x9F\x98\x80z"), L"a\xD83D\xDE00z");
    EXPECT_EQ(toUtf8(L"\xDE00\xD83Dx"), "\xEF\xBF\xBD\xEF\xBF\xBDx");
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
    static int seenLine = 0;
    setLevelGate([](RootLoggerLevel::Level) noexcept { return true; });
    static std::string seen;
    setLogHook([](std::string_view message, RootLoggerLevel::Level level, int line,
                  std::string_view, std::string_view) {
        // A record asks for its thread's description; that must not look functions up again.
        getThreadDescription(threadId());
        seen = std::string(RootLoggerLevel::levelText(level)) + ' ' + std::string(message);
        seenLine = line;
    });
    EXPECT_EQ(loadKernel32Function("NoSuchFunction"), nullptr);
    EXPECT_EQ(seen, "Error Can't load NoSuchFunction from Kernel32");
    EXPECT_EQ(seenLine, 75);
    EXPECT_NE(loadKernel32Function("GetCurrentThreadId"), nullptr);
    setLevelGate(nullptr);
    setLogHook({});
}

} // namespace
} // namespace tarn::platform

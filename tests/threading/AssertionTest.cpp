#include "threading/Assertion.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

TEST(Assertion, TellsBothHandlersAndGoesOnWithoutThem) {
    std::vector<std::string> calls;
    setAssertionMessageHandler([&](const std::string& text, std::uint32_t line,
                                   const std::string& first, const std::string& second) {
        calls.push_back(text + "|" + std::to_string(line) + "|" + first + "|" + second);
    });
    setAssertionDetailHandler([&](const std::string& first, const std::string& second,
                                  std::uint32_t line, const std::string& expression,
                                  const std::string& message) {
        calls.push_back(first + "|" + second + "|" + std::to_string(line) + "|" + expression + "|" +
                        message);
    });
    assertionFailed("File", 7, "function", "a == b", "they differ");
    assertionFailed("File", 8, "function", "a == b", "");
    setAssertionMessageHandler({});
    setAssertionDetailHandler({});
    assertionFailed("File", 9, "function", "false", "nobody hears this");
    EXPECT_THAT(calls, ::testing::ElementsAre(
                           "Assertion failed: a == b with message: they differ|7|File|function",
                           "File|function|7|a == b|they differ",
                           "Assertion failed: a == b|8|File|function", "File|function|8|a == b|"));
}

} // namespace
} // namespace tarn

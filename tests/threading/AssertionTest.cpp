#include "threading/Assertion.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tarn {
namespace {

using ::testing::ElementsAre;

class Assertion : public ::testing::Test {
protected:
    Assertion() {
        setAssertionMessageHandler([this](const std::string& text, std::uint32_t line,
                                          const std::string& first, const std::string& second) {
            mCalls.push_back("message|" + text + "|" + std::to_string(line) + "|" + first + "|" +
                             second);
        });
        setAssertionDetailHandler([this](const std::string& first, const std::string& second,
                                         std::uint32_t line, const std::string& expression,
                                         const std::string& message) {
            mCalls.push_back("detail|" + first + "|" + second + "|" + std::to_string(line) + "|" +
                             expression + "|" + message);
        });
    }
    ~Assertion() override {
        setAssertionMessageHandler({});
        setAssertionDetailHandler({});
    }

    std::vector<std::string> mCalls;
};

TEST_F(Assertion, TellsBothHandlersAndGoesOn) {
    assertionFailed("File", 7, "function", "a == b", "they differ");
    assertionFailed("File", 8, "function", "a == b", "");
    EXPECT_THAT(
        mCalls,
        ElementsAre("message|Assertion failed: a == b with message: they differ|7|File|function",
                    "detail|File|function|7|a == b|they differ",
                    "message|Assertion failed: a == b|8|File|function",
                    "detail|File|function|8|a == b|"));
}

TEST_F(Assertion, GoesOnWithoutHandlersAndLetsTheirExceptionsReachTheCaller) {
    setAssertionMessageHandler([](const auto&...) { throw std::runtime_error("stop here"); });
    EXPECT_THROW(assertionFailed("File", 7, "function", "false", ""), std::runtime_error);
    setAssertionMessageHandler({});
    setAssertionDetailHandler({});
    assertionFailed("File", 7, "function", "false", "nobody hears this");
    EXPECT_THAT(mCalls, ElementsAre());
}

} // namespace
} // namespace tarn

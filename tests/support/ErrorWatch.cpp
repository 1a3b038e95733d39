#include "support/ErrorWatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn::testing {
namespace {

struct Watch {
    std::mutex mutex;
    std::vector<std::string> expectedBeginnings;
    std::vector<std::string> errors;
};

Watch& watch() {
    static Watch& instance = *new Watch; // workers log while the process exits
    return instance;
}

/// Fails the test that ends for its unexpected Error lines and forgets what it expected.
class ErrorListener : public ::testing::EmptyTestEventListener {
    void OnTestEnd(const ::testing::TestInfo& /*test*/) override {
        const std::lock_guard lock(watch().mutex);
        const auto expected = std::exchange(watch().expectedBeginnings, {});
        for (const std::string& error : std::exchange(watch().errors, {})) {
            if (std::ranges::none_of(expected, [&](const auto& beginning) {
                    return error.starts_with(beginning);
                })) {
                ADD_FAILURE() << "unexpected Error line: " << error;
            }
        }
    }
};

/// GoogleTest owns its listeners; one may be added before main.
[[maybe_unused]] const bool isListening = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new ErrorListener);
    return true;
}();

} // namespace

void expectErrorLine(std::string beginning) {
    const std::lock_guard lock(watch().mutex);
    watch().expectedBeginnings.push_back(std::move(beginning));
}

void noteErrorLine(std::string_view message) {
    const std::lock_guard lock(watch().mutex);
    watch().errors.emplace_back(message);
}

} // namespace tarn::testing

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
    std::vector<std::function<void()>> actions;
};

Watch& watch() {
    static Watch& instance = *new Watch; // workers log while the process exits
    return instance;
}

/// Fails the running test for its unexpected Error lines and forgets what it expected.
void checkErrorLines() {
    std::unique_lock lock(watch().mutex);
    const auto actions = watch().actions;
    lock.unlock();
    for (const auto& action : actions) {
        action();
    }
    lock.lock();
    const auto errors = std::exchange(watch().errors, {});
    const auto expected = std::exchange(watch().expectedBeginnings, {});
    lock.unlock();
    for (const std::string& error : errors) {
        const auto isBeginning = [&](const std::string& text) { return error.starts_with(text); };
        if (std::ranges::none_of(expected, isBeginning)) {
            ADD_FAILURE() << "unexpected Error line: " << error;
        }
    }
}

class ErrorListener : public ::testing::EmptyTestEventListener {
    void OnTestEnd(const ::testing::TestInfo& /*test*/) override { checkErrorLines(); }
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

void beforeErrorCheck(std::function<void()> action) {
    const std::lock_guard lock(watch().mutex);
    watch().actions.push_back(std::move(action));
}

} // namespace tarn::testing

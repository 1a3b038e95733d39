#include "faults/FaultFixture.h"

#include <gmock/gmock.h>

namespace e2e {
namespace {

using tarn::testing::readFile;

class Undisturbed : public LauncherFixture {
public:
    std::string destination() const {
        const ProcessResult result = launch({FAULTS_RECORDING, mDestination});
        EXPECT_EQ(result.status, 0) << result.errors;
        return readFile(mDestination);
    }
    void TestBody() override {}
};

const std::string& recording() {
    static const std::string content = readFile(FAULTS_RECORDING);
    return content;
}

} // namespace

const std::string& undisturbedDestination() {
    static const std::string content = Undisturbed().destination();
    return content;
}

FaultFixture::FaultFixture() {
    startAgain();
}

void FaultFixture::startAgain() const {
    tarn::FileUtils().remove(mDestination);
    tarn::FileUtils().copyFile(FAULTS_RECORDING, mSource);
}

Process::Start FaultFixture::faulty(const std::string& rules,
                                    std::vector<std::string> arguments) const {
    Process::Start start = command(std::move(arguments));
    start.environment.emplace_back("LD_PRELOAD", FAULTY_CALLS_LIBRARY);
    start.environment.emplace_back("FAULTY_CALLS", rules);
    // A preloaded library comes before the sanitizers' own, which they would take for a mistake.
    start.environment.emplace_back("ASAN_OPTIONS", "verify_asan_link_order=0");
    return start;
}

ProcessResult FaultFixture::convert(const std::string& rules) const {
    ProcessResult result =
        tarn::testing::runProcess(faulty(rules, {"--delete-sources", mSource, mDestination}));
    // Its status for a leak is the one of a failed conversion.
    EXPECT_FALSE(result.errors.contains("Sanitizer")) << result.errors;
    return result;
}

bool FaultFixture::isSourceWhole() const {
    return exists(mSource) && readFile(mSource) == recording();
}

bool FaultFixture::isDestinationWhole() const {
    return exists(mDestination) && readFile(mDestination) == undisturbedDestination();
}

void FaultFixture::expectNothingLost() const {
    EXPECT_TRUE(isSourceWhole() || isDestinationWhole());
}

void FaultFixture::expectTidy() const {
    EXPECT_THAT(filesLeft(), ::testing::Each(::testing::AnyOf("meeting.mkv", "out.mp4")));
}

} // namespace e2e

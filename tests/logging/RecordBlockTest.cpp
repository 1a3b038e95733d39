#include "logging/RecordBlock.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace tarn {
namespace {

TEST(RecordBlock, GivesBackWhatItWasGiven) {
    std::mt19937 random(1); // NOLINT: the same in every run
    const auto oneOf = [&](auto... values) {
        const std::common_type_t<decltype(values)...> all[] = {values...};
        return all[random() % sizeof...(values)];
    };
    std::vector<LogRecord> given;
    LogRecord record;
    RecordBlock block(record);
    while (block.add(record)) {
        given.push_back(record);
        record.time += static_cast<std::time_t>(random() % 2);
        record.threadId = oneOf(1U, 0xFFFFFFFFU);
        record.threadName = record.threadId == 1 ? "" : oneOf("a name", "another");
        record.line = oneOf(-1, 7);
        record.level = oneOf(RootLoggerLevel::Debug, RootLoggerLevel::Test);
        record.file = oneOf("File", "Other");
        record.function = oneOf("function", "");
        record.tag = oneOf("", "", "a tag");
        record.message = oneOf("", "a message", "longer than the other");
    }
    EXPECT_GT(given.size(), 1000U);
    std::size_t count = 0;
    block.forEach([&](const LogRecord& found) {
        const LogRecord& expected = given.at(count++);
        EXPECT_TRUE(found.time == expected.time && found.threadId == expected.threadId &&
                    found.line == expected.line && found.level == expected.level);
        EXPECT_TRUE(found.threadName == expected.threadName && found.file == expected.file &&
                    found.function == expected.function && found.tag == expected.tag &&
                    found.message == expected.message);
    });
    EXPECT_EQ(count, given.size());

    const std::string huge(200'000, 'x');
    record.message = huge;
    EXPECT_FALSE(block.fits(record));
    RecordBlock large(record);
    EXPECT_TRUE(large.add(record) && !large.add(record));
    large.forEach([&](const LogRecord& found) { EXPECT_EQ(found.message, huge); });
}

} // namespace
} // namespace tarn

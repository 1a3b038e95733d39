#include "logging/RecordBlock.h"

#include <algorithm>
#include <cstring>

namespace tarn {
namespace {

/// What a record holds of its own.
enum Part : unsigned char { Time = 1, Thread = 2, Place = 4, Tag = 8 };

constexpr std::size_t kLongestHead = 1 + sizeof(std::time_t) + 2 * sizeof(std::uint32_t) +
                                     sizeof(std::int32_t) + sizeof(RootLoggerLevel::Level) +
                                     4 * sizeof(std::uint32_t);

template <typename Value>
Value take(const char*& from) {
    Value value;
    std::memcpy(&value, from, sizeof value);
    from += sizeof value;
    return value;
}

std::string_view takeText(const char*& from) {
    const auto size = take<std::uint32_t>(from);
    const std::string_view text(from, size);
    from += size;
    return text;
}

} // namespace

RecordBlock::RecordBlock(const LogRecord& first)
    : mCapacity(std::max(kUsualSize, longestSize(first))),
      mBytes(std::make_unique_for_overwrite<char[]>(mCapacity)) {
}

std::size_t RecordBlock::longestSize(const LogRecord& record) {
    return kLongestHead + record.threadName.size() + record.file.size() + record.function.size() +
           record.tag.size() + record.message.size();
}

void RecordBlock::clear() {
    mSize = 0;
    mLast = {};
}

void RecordBlock::put(const auto& value) {
    std::memcpy(mBytes.get() + mSize, &value, sizeof value);
    mSize += sizeof value;
}

std::string_view RecordBlock::putText(std::string_view text) {
    put(static_cast<std::uint32_t>(text.size()));
    char* const place = mBytes.get() + mSize;
    mSize += text.copy(place, text.size());
    return {place, text.size()};
}

bool RecordBlock::add(const LogRecord& record) {
    if (!fits(record)) {
        return false;
    }
    const bool isFirst = mSize == 0;
    unsigned parts = record.tag.empty() ? 0 : Tag;
    if (isFirst || record.time != mLast.time) {
        parts |= Time;
    }
    if (isFirst || record.threadId != mLast.threadId || record.threadName != mLast.threadName) {
        parts |= Thread;
    }
    if (isFirst || record.line != mLast.line || record.level != mLast.level ||
        record.file != mLast.file || record.function != mLast.function) {
        parts |= Place;
    }
    put(static_cast<unsigned char>(parts));
    if ((parts & Time) != 0) {
        put(mLast.time = record.time);
    }
    if ((parts & Thread) != 0) {
        put(mLast.threadId = record.threadId);
        mLast.threadName = putText(record.threadName);
    }
    if ((parts & Place) != 0) {
        put(mLast.line = record.line);
        put(mLast.level = record.level);
        mLast.file = putText(record.file);
        mLast.function = putText(record.function);
    }
    if ((parts & Tag) != 0) {
        putText(record.tag);
    }
    putText(record.message);
    return true;
}

std::size_t RecordBlock::read(std::size_t position, LogRecord& record) const {
    const char* from = mBytes.get() + position;
    const unsigned parts = take<unsigned char>(from);
    if ((parts & Time) != 0) {
        record.time = take<std::time_t>(from);
    }
    if ((parts & Thread) != 0) {
        record.threadId = take<std::uint32_t>(from);
        record.threadName = takeText(from);
    }
    if ((parts & Place) != 0) {
        record.line = take<std::int32_t>(from);
        record.level = take<RootLoggerLevel::Level>(from);
        record.file = takeText(from);
        record.function = takeText(from);
    }
    record.tag = (parts & Tag) != 0 ? takeText(from) : std::string_view();
    record.message = takeText(from);
    return static_cast<std::size_t>(from - mBytes.get());
}

} // namespace tarn

#pragma once

#include "logging/LogRecord.h"

#include <cstddef>
#include <memory>

namespace tarn {

/// Records in a block of memory, one behind the other, each without what it has in common with the
/// one before it: a flood of lines is mostly of one time, one thread and one place, and takes
/// little more than its messages. Owns their texts. Not thread-safe.
class RecordBlock {
public:
    static constexpr std::size_t kUsualSize = 65536;

    /// Room for one record of any size at least.
    explicit RecordBlock(const LogRecord& first);

    bool fits(const LogRecord& record) const { return longestSize(record) <= mCapacity - mSize; }
    /// False when the record does not fit in.
    bool add(const LogRecord& record);
    void clear();
    /// Of usual size, and so worth being used again.
    bool isUsual() const { return mCapacity == kUsualSize; }

    /// Calls `visit(record)` for each, in order. The texts are valid until the block is cleared.
    void forEach(const auto& visit) const {
        LogRecord record;
        for (std::size_t position = 0; position < mSize;) {
            position = read(position, record);
            visit(record);
        }
    }

private:
    static std::size_t longestSize(const LogRecord& record);
    /// Puts the record at `position` into `record`, which holds the one before it, and gives the
    /// position of the next.
    std::size_t read(std::size_t position, LogRecord& record) const;
    std::string_view putText(std::string_view text);
    void put(const auto& value);

    std::size_t mCapacity;
    std::unique_ptr<char[]> mBytes;
    std::size_t mSize = 0;
    LogRecord mLast; ///< the last one's, in mBytes; its message and tag are not used
};

} // namespace tarn

#pragma once

#include "engine/support/AvHandles.h"

#include <cstdint>

namespace zelcore {

using AvioRead = int (*)(void* self, std::uint8_t* buffer, int size);
using AvioSeek = std::int64_t (*)(void* self, std::int64_t offset, int whence);

/// Hands `self` to the calls. Throws std::bad_alloc. For writing `transfer` gets what to write.
AvioPtr makeAvio(int bufferSize, bool isForWriting, void* self, AvioRead transfer, AvioSeek seek);

/// What a seek call has to do for a file of that size: moves `position`, and returns it, the size
/// where that is asked for, or AVERROR(EINVAL).
std::int64_t seekWithin(std::uint64_t size, std::uint64_t& position, std::int64_t offset,
                        int whence) noexcept;

} // namespace zelcore

#include "engine/support/ContentHash.h"

#define XXH_INLINE_ALL
#include <new>
#include <xxhash.h>

namespace zelcore {

std::uint64_t hashOf(const void* data, std::size_t size) {
    return XXH3_64bits(data, size);
}

struct RunningHash::State {
    XXH3_state_t xxh3;
};

RunningHash::RunningHash() : mState(std::make_unique<State>()) {
    restart();
}
RunningHash::RunningHash(RunningHash&&) noexcept = default;
RunningHash& RunningHash::operator=(RunningHash&&) noexcept = default;
RunningHash::~RunningHash() = default;

void RunningHash::add(const void* data, std::size_t size) {
    XXH3_64bits_update(&mState->xxh3, data, size);
}

std::uint64_t RunningHash::value() const {
    return XXH3_64bits_digest(&mState->xxh3);
}

void RunningHash::restart() {
    XXH3_64bits_reset(&mState->xxh3);
}

} // namespace zelcore

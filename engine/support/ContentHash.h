#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace zelcore {

/// 64 bits that tell one content from another: for finding faults, no help against forgers.
std::uint64_t hashOf(const void* data, std::size_t size);

/// The same for content that comes in pieces.
class RunningHash {
public:
    RunningHash();
    RunningHash(RunningHash&&) noexcept;
    RunningHash& operator=(RunningHash&&) noexcept;
    ~RunningHash();

    void add(const void* data, std::size_t size);
    std::uint64_t value() const;
    void restart();

private:
    struct State;
    std::unique_ptr<State> mState;
};

} // namespace zelcore

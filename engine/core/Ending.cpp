#include "engine/core/Ending.h"

#include <mutex>

namespace zelcore {

namespace {

struct Shared {
    std::mutex mutex; ///< guards ending
    Ending ending;
};

Shared& shared() {
    // Leaked: conversions may run while the process ends.
    static auto& instance = *new Shared();
    return instance;
}

} // namespace

void keepEnding(const Ending& ending) {
    const std::lock_guard lock(shared().mutex);
    shared().ending = ending;
}

Ending lastEnding() {
    const std::lock_guard lock(shared().mutex);
    return shared().ending;
}

} // namespace zelcore

#include "engine/job/Ending.h"

#include <mutex>

namespace zelcore {

namespace {

struct Kept {
    std::mutex mutex; ///< guards ending
    Ending ending;
};

Kept& kept() {
    // Leaked: conversions may run while the process ends.
    static auto& instance = *new Kept();
    return instance;
}

} // namespace

void keepEnding(const Ending& ending) {
    const std::lock_guard lock(kept().mutex);
    kept().ending = ending;
}

Ending lastEnding() {
    const std::lock_guard lock(kept().mutex);
    return kept().ending;
}

} // namespace zelcore

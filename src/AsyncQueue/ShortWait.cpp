#include "AsyncQueue/ShortWait.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace tarn::shortWait {

void pause(int times) noexcept {
    for (; times > 0; --times) {
#if defined(__x86_64__) || defined(__i386__)
        _mm_pause();
#endif
    }
}

std::unique_lock<std::mutex> lock(std::mutex& mutex) {
    constexpr int kTries = 7;
    std::unique_lock<std::mutex> lock(mutex, std::try_to_lock);
    for (int tries = 0; !lock.owns_lock() && tries < kTries; ++tries) {
        pause(1 << tries); // looking at it all the time would hold up its owner
        if (lock.try_lock()) {
            return lock;
        }
    }
    if (!lock.owns_lock()) {
        lock.lock();
    }
    return lock;
}

} // namespace tarn::shortWait

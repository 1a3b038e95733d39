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

} // namespace tarn::shortWait

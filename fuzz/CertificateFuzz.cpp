#include "fuzz/Input.h"
#include "platform/CertificateEntry.h"

#include <functional>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of exactly this size, so that a byte beyond it is seen.
    const std::vector<std::uint8_t> copy(data, data + size);
    const std::span<const std::byte> entry = std::as_bytes(std::span(copy));
    const auto message = tarn::platform::certificateMessage(entry);
    if (message) {
        const std::less_equal<> isUpTo;
        FUZZ_EXPECT(message->size() >= 2);
        FUZZ_EXPECT(isUpTo(entry.data() + tarn::platform::kCertificateHeaderSize, message->data()));
        FUZZ_EXPECT(isUpTo(message->data() + message->size(), entry.data() + entry.size()));
        FUZZ_EXPECT(message->front() == std::byte{0x30});
    }
    return 0;
}

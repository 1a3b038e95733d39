#include "platform/CertificateEntry.h"

#include <cstdint>

namespace tarn::platform {
namespace {

constexpr std::byte kSequenceTag{0x30};
constexpr std::uint32_t kLongForm = 0x80;

std::uint32_t littleEndian(std::span<const std::byte> bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) {
        value = (value << 8U) | std::to_integer<std::uint32_t>(bytes[i - 1]);
    }
    return value;
}

/// Size of the DER sequence that the bytes begin with, its own tag and length included (X.690,
/// 8.1.3); nothing when they begin with something else or end before it does.
std::optional<std::size_t> sequenceSize(std::span<const std::byte> bytes) {
    if (bytes.size() < 2 || bytes[0] != kSequenceTag) {
        return std::nullopt;
    }
    const auto first = std::to_integer<std::uint32_t>(bytes[1]);
    std::size_t header = 2;
    std::uint64_t content = first;
    if (first >= kLongForm) {
        const std::size_t digits = first - kLongForm;
        if (digits == 0 || digits > 4 || bytes.size() < header + digits) {
            return std::nullopt;
        }
        content = 0;
        for (const std::byte digit : bytes.subspan(header, digits)) {
            content = (content << 8U) | std::to_integer<std::uint64_t>(digit);
        }
        header += digits;
    }
    if (content > bytes.size() - header) {
        return std::nullopt;
    }
    return header + static_cast<std::size_t>(content);
}

} // namespace

std::optional<std::span<const std::byte>> certificateMessage(std::span<const std::byte> entry) {
    if (entry.size() < kCertificateHeaderSize) {
        return std::nullopt;
    }
    const std::size_t length = littleEndian(entry.first(4));
    if (length < kCertificateHeaderSize || length > entry.size()) {
        return std::nullopt;
    }
    const auto message = entry.first(length).subspan(kCertificateHeaderSize);
    const auto size = sequenceSize(message);
    return size ? std::optional(message.first(*size)) : std::nullopt;
}

} // namespace tarn::platform

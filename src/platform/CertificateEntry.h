#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace tarn::platform {

/// Bytes before the message in an entry: length (32 bits, these included), revision, type (16
/// each).
inline constexpr std::size_t kCertificateHeaderSize = 8;

/// The signed message (DER) in an entry of a PE file's certificate table ("PE Format", section "The
/// attribute certificate table"), without the padding after it. `entry` is what was read, which may
/// be longer than the entry says. Nothing when a length does not hold what it must.
std::optional<std::span<const std::byte>> certificateMessage(std::span<const std::byte> entry);

} // namespace tarn::platform

#include "platform/CertificateEntry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::platform {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// An entry that says it has `length` bytes.
Bytes entry(std::uint32_t length, std::initializer_list<std::uint8_t> contents) {
    Bytes bytes{0, 0, 0, 0, 0, 2, 2, 0}; // length, revision 2.0, PKCS#7
    for (unsigned i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(length >> (8 * i));
    }
    bytes.insert(bytes.end(), contents);
    return bytes;
}

TEST(CertificateEntry, GivesTheMessageOnlyWhenEveryLengthHolds) {
    struct Case {
        std::string name;
        Bytes bytes;
        std::size_t messageSize = 0; ///< 0: no message
    };
    const std::vector<Case> cases{
        {"whole", entry(13, {0x30, 3, 1, 2, 3}), 5},
        {"padded", entry(16, {0x30, 3, 1, 2, 3, 0, 0, 0}), 5},
        {"spare after it", entry(13, {0x30, 3, 1, 2, 3, 9, 9, 9, 9}), 5},
        {"long form", entry(15, {0x30, 0x82, 0, 3, 1, 2, 3}), 7},
        {"empty sequence", entry(10, {0x30, 0}), 2},
        {"nothing", {}},
        {"shorter than a header", {13, 0, 0, 0, 0, 2, 2}},
        {"says shorter than its header", entry(7, {0x30, 3, 1, 2, 3})},
        {"says header only", entry(8, {0x30, 3, 1, 2, 3})},
        {"says longer than read", entry(14, {0x30, 3, 1, 2, 3})},
        {"says 4 GB", entry(0xFFFFFFFF, {0x30, 3, 1, 2, 3})},
        {"not a sequence", entry(13, {0x31, 3, 1, 2, 3})},
        {"content cut", entry(12, {0x30, 3, 1, 2})},
        {"content beyond the entry", entry(12, {0x30, 3, 1, 2, 3})},
        {"length cut", entry(10, {0x30, 0x82})},
        {"indefinite length", entry(13, {0x30, 0x80, 1, 0, 0})},
        {"length of five digits", entry(16, {0x30, 0x85, 0, 0, 0, 0, 1, 1})},
        {"length of 4 GB", entry(14, {0x30, 0x84, 0xFF, 0xFF, 0xFF, 0xFF})},
    };
    for (const Case& each : cases) {
        // Of exactly this size, so that the address sanitizer sees a read beyond it.
        const auto message = certificateMessage(std::as_bytes(std::span(each.bytes)));
        EXPECT_EQ(message ? message->size() : 0, each.messageSize) << each.name;
    }
}

} // namespace
} // namespace tarn::platform

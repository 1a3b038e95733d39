#include "platform/CertificateEntry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace tarn::platform {
namespace {

struct EntryCase {
    const char* name;
    std::vector<std::uint8_t> bytes;
    std::optional<std::size_t> messageSize; ///< nothing: no message

    friend void PrintTo(const EntryCase& each, std::ostream* stream) { *stream << each.name; }
};

/// An entry that says it has `length` bytes.
std::vector<std::uint8_t> entry(std::uint32_t length,
                                std::initializer_list<std::uint8_t> contents) {
    std::vector<std::uint8_t> bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>((length >> shift) & 0xFFU));
    }
    for (const std::uint8_t byte :
         std::initializer_list<std::uint8_t>{0, 2, 2, 0}) { // revision 2.0, PKCS#7
        bytes.push_back(byte);
    }
    for (const std::uint8_t byte : contents) {
        bytes.push_back(byte);
    }
    return bytes;
}

class CertificateEntry : public testing::TestWithParam<EntryCase> {};

TEST_P(CertificateEntry, GivesTheMessageOnlyWhenEveryLengthHolds) {
    // A copy of exactly this size, so that a read beyond it is seen by the address sanitizer.
    const std::vector<std::uint8_t> bytes(GetParam().bytes);
    const auto message = certificateMessage(std::as_bytes(std::span(bytes)));
    ASSERT_EQ(message.has_value(), GetParam().messageSize.has_value());
    if (message) {
        EXPECT_EQ(message->size(), *GetParam().messageSize);
        EXPECT_EQ(message->data(), std::as_bytes(std::span(bytes)).data() + kCertificateHeaderSize);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Entries, CertificateEntry,
    testing::Values(
        EntryCase{"whole", entry(13, {0x30, 3, 1, 2, 3}), 5},
        EntryCase{"padded", entry(16, {0x30, 3, 1, 2, 3, 0, 0, 0}), 5},
        EntryCase{"spare_after_it", entry(13, {0x30, 3, 1, 2, 3, 9, 9, 9, 9}), 5},
        EntryCase{"long_form", entry(15, {0x30, 0x82, 0, 3, 1, 2, 3}), 7},
        EntryCase{"empty_sequence", entry(10, {0x30, 0}), 2}, EntryCase{"nothing", {}, {}},
        EntryCase{"shorter_than_a_header", {13, 0, 0, 0, 0, 2, 2}, {}},
        EntryCase{"says_shorter_than_its_header", entry(7, {0x30, 3, 1, 2, 3}), {}},
        EntryCase{"says_header_only", entry(8, {0x30, 3, 1, 2, 3}), {}},
        EntryCase{"says_longer_than_read", entry(14, {0x30, 3, 1, 2, 3}), {}},
        EntryCase{"says_4_GB", entry(0xFFFFFFFF, {0x30, 3, 1, 2, 3}), {}},
        EntryCase{"not_a_sequence", entry(13, {0x31, 3, 1, 2, 3}), {}},
        EntryCase{"content_cut", entry(12, {0x30, 3, 1, 2}), {}},
        EntryCase{"content_beyond_the_entry", entry(12, {0x30, 3, 1, 2, 3}), {}},
        EntryCase{"length_cut", entry(10, {0x30, 0x82}), {}},
        EntryCase{"indefinite_length", entry(13, {0x30, 0x80, 1, 0, 0}), {}},
        EntryCase{"length_of_five_digits", entry(16, {0x30, 0x85, 0, 0, 0, 0, 1, 1}), {}},
        EntryCase{"length_of_4_GB", entry(14, {0x30, 0x84, 0xFF, 0xFF, 0xFF, 0xFF}), {}}),
    [](const auto& each) { return std::string(each.param.name); });

} // namespace
} // namespace tarn::platform

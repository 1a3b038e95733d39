#include "platform/CertificateEntry.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn::platform {
namespace {

using namespace std::string_literals;

TEST(CertificateEntry, GivesTheMessageOnlyWhenEveryLengthHolds) {
    const std::string rest = "\0\0\0\0\2\2\0"s; // of a length below 256, revision 2.0, PKCS#7
    const std::pair<std::string, std::size_t> cases[] = {
        {"\x0D" + rest + "\x30\x03\1\2\3", 5},
        {"\x10" + rest + "\x30\x03\1\2\3\0\0\0"s, 5},    // padded
        {"\x0D" + rest + "\x30\x03\1\2\3\x09\x09", 5},   // more after it
        {"\x0F" + rest + "\x30\x82\0\x03\1\2\3"s, 7},    // the long form of a length
        {"\x0A" + rest + "\x30\0"s, 2},                  // an empty sequence
        {"", 0},                                         // from here on: no message
        {"\x0D\0\0\0\0\2\2"s, 0},                        // shorter than a header
        {"\x07" + rest + "\x30\x03\1\2\3", 0},           // says shorter than its header
        {"\x08" + rest + "\x30\x03\1\2\3", 0},           // says header alone
        {"\x0E" + rest + "\x30\x03\1\2\3", 0},           // says longer than read
        {"\xFF\xFF\xFF\xFF\0\2\2\0\x30\x03\1\2\3"s, 0},  // says 4 GB
        {"\x0D" + rest + "\x31\x03\1\2\3", 0},           // no sequence
        {"\x0C" + rest + "\x30\x03\1\2\3", 0},           // content beyond the entry
        {"\x0A" + rest + "\x30\x82", 0},                 // length cut
        {"\x0D" + rest + "\x30\x80\1\0\0"s, 0},          // indefinite length
        {"\x10" + rest + "\x30\x85\0\0\0\0\1\1"s, 0},    // length of five digits
        {"\x0E" + rest + "\x30\x84\xFF\xFF\xFF\xFF", 0}, // content of 4 GB
    };
    for (const auto& [bytes, size] : cases) {
        const auto message = certificateMessage(std::as_bytes(std::span(bytes)));
        EXPECT_EQ(message ? message->size() : 0, size) << ::testing::PrintToString(bytes);
    }
}

} // namespace
} // namespace tarn::platform

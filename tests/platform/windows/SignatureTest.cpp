#include "loader/AcceptedSigners.h"
#include "platform/Signature.h"
#include "platform/Text.h"
#include "platform/windows/ProgramFolder.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace tarn::platform {
namespace {

using tarn::testing::readFile;
using testing::besideProgram;

std::string signedFile(const std::wstring& name) {
    return toUtf8(besideProgram(L"signed\\" + name));
}
std::optional<std::wstring> signerOf(const std::string& path) {
    return embeddedSignerName(toWide(path));
}

/// A signed file whose bytes a test spoils. Offsets are those of the PE format for 64-bit files.
class SignedImage {
public:
    SignedImage() : bytes(readFile(signedFile(L"accepted.dll"))) {
        directory = get(0x3C) + 24 + 144; // certificate table: offset in the file, size
        table = get(directory);
        tableSize = get(directory + 4);
    }
    std::uint32_t get(std::size_t offset) const {
        std::uint32_t value = 0;
        std::memcpy(&value, bytes.data() + offset, sizeof(value));
        return value;
    }
    void set(std::size_t offset, std::size_t value) {
        const auto narrow = static_cast<std::uint32_t>(value);
        std::memcpy(bytes.data() + offset, &narrow, sizeof(narrow));
    }
    std::optional<std::wstring> signer() const {
        return signerOf(mFolder.write("library.dll", bytes));
    }

    std::string bytes;
    std::size_t directory = 0;
    std::size_t table = 0;
    std::size_t tableSize = 0;

private:
    tarn::testing::TemporaryFolder mFolder;
};

TEST(Signature, GivesTheSignersName) {
    EXPECT_EQ(signerOf(signedFile(L"accepted.dll")), loader::kAcceptedSigners[2]);
    EXPECT_EQ(signerOf(signedFile(L"other.dll")), L"Somebody Else");
    EXPECT_EQ(signerOf(signedFile(L"beyond-ascii.dll")), L"Größe 会議 Ltd");
    EXPECT_EQ(SignedImage().signer(), loader::kAcceptedSigners[2]) << "the copy is a faithful one";
}

TEST(Signature, IsNoneOnWhatIsNotASignedLibrary) {
    const tarn::testing::TemporaryFolder folder;
    EXPECT_EQ(signerOf(toUtf8(besideProgram(L"libraries\\neighbour.dll"))), std::nullopt);
    for (const std::string& path :
         {folder.write("empty.dll", ""), folder.write("text.dll", std::string(5000, 'M')),
          folder / "absent.dll", folder.path()}) {
        EXPECT_EQ(signerOf(path), std::nullopt) << path;
    }
    EXPECT_FALSE(canReadFileProperties(toWide(folder / "absent.dll")));
}

TEST(Signature, IsNoneWithTwoEntries) {
    SignedImage image;
    image.bytes += image.bytes.substr(image.table, image.tableSize);
    image.set(image.directory + 4, 2 * image.tableSize);
    EXPECT_EQ(image.signer(), std::nullopt);
}

TEST(Signature, IsNoneWhenALengthDoesNotHold) {
    for (const std::size_t length : {0U, 4U, 7U, 8U, 11U, 12U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        SignedImage image;
        image.set(image.table, length);
        EXPECT_EQ(image.signer(), std::nullopt) << length;
    }
    for (const std::size_t size : {4U, 8U, 12U, 0xFFFFFFF8U}) {
        SignedImage image;
        image.set(image.directory + 4, size);
        EXPECT_EQ(image.signer(), std::nullopt) << size;
    }
    SignedImage outside;
    outside.set(outside.directory, outside.bytes.size() + 4096);
    EXPECT_EQ(outside.signer(), std::nullopt);
}

TEST(Signature, IsNoneWhenItsBytesAreCutOrChanged) {
    SignedImage cut;
    cut.bytes.resize(cut.table + cut.tableSize / 2);
    EXPECT_EQ(cut.signer(), std::nullopt);
    SignedImage garbage;
    garbage.bytes.replace(garbage.table + 8, garbage.tableSize - 8, garbage.tableSize - 8, 'x');
    EXPECT_EQ(garbage.signer(), std::nullopt);
    // The last bytes of the message are those of the encrypted digest.
    SignedImage forged;
    for (std::size_t i = 16; i < 48; ++i) {
        forged.bytes[forged.table + forged.tableSize - i] ^= 0x55;
    }
    EXPECT_EQ(forged.signer(), std::nullopt);
}

} // namespace
} // namespace tarn::platform

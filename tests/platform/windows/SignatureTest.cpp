#include "loader/AcceptedSigners.h"
#include "platform/Signature.h"
#include "platform/windows/PolicyFixture.h"

#include <cstring>

namespace tarn::platform {
namespace {

using loader::besideProgram;
using tarn::testing::readFile;

std::optional<std::wstring> signerOf(const std::string& path) {
    return embeddedSignerName(toWide(path));
}

/// A signed file whose bytes a test spoils. Offsets are those of the PE format for 64-bit files.
struct SignedImage {
    std::uint32_t get(std::size_t offset) const {
        std::uint32_t value = 0;
        std::memcpy(&value, bytes.data() + offset, sizeof(value));
        return value;
    }
    void set(std::size_t offset, std::size_t value) {
        std::memcpy(bytes.data() + offset, &value, sizeof(std::uint32_t));
    }
    std::optional<std::wstring> signer() const {
        return signerOf(folder.write("library.dll", bytes));
    }

    tarn::testing::TemporaryFolder folder{};
    std::string bytes = readFile(besideProgram("signed\\accepted.dll"));
    /// Of the certificate table: where its offset in the file and its size stand.
    std::size_t directory = get(0x3C) + 24 + 144;
    std::size_t table = get(directory);
    std::size_t size = get(directory + 4);
};

TEST(Signature, GivesTheSignersName) {
    EXPECT_EQ(signerOf(besideProgram("signed\\other.dll")), L"Somebody Else");
    EXPECT_EQ(signerOf(besideProgram("signed\\beyond-ascii.dll")), L"Größe 会議 Ltd");
    EXPECT_EQ(SignedImage().signer(), loader::kAcceptedSigners[2]);
}

TEST(Signature, IsNoneOnWhatIsNotASignedLibrary) {
    const tarn::testing::TemporaryFolder folder;
    for (const std::string& path :
         {besideProgram("libraries\\neighbour.dll"), folder.write("empty.dll", ""),
          folder.write("text.dll", std::string(5000, 'M')), folder / "absent.dll", folder.path()}) {
        EXPECT_EQ(signerOf(path), std::nullopt) << path;
    }
    EXPECT_FALSE(canReadFileProperties(toWide(folder / "absent.dll")));
}

TEST(Signature, IsNoneWhenTheTableIsSpoilt) {
    void (*const faults[])(SignedImage&) = {
        // An entry shorter than its header or longer than the file, a table of such sizes.
        [](SignedImage& image) { image.set(image.table, 7); },
        [](SignedImage& image) { image.set(image.table, 12); },
        [](SignedImage& image) { image.set(image.table, 0xFFFFFFFF); },
        [](SignedImage& image) { image.set(image.directory + 4, 4); },
        [](SignedImage& image) { image.set(image.directory + 4, 0xFFFFFFF8); },
        // A second entry.
        [](SignedImage& image) {
            image.bytes += image.bytes.substr(image.table, image.size);
            image.set(image.directory + 4, 2 * image.size);
        },
        // Outside of the file, cut, garbage.
        [](SignedImage& image) { image.set(image.directory, image.bytes.size() + 4096); },
        [](SignedImage& image) { image.bytes.resize(image.table + image.size / 2); },
        [](SignedImage& image) { std::memset(&image.bytes[image.table + 8], 'x', image.size - 8); },
        // The last bytes of the message are those of the encrypted digest.
        [](SignedImage& image) {
            image.bytes[image.table + image.size - 16] ^= 0x55;
            image.bytes[image.table + image.size - 48] ^= 0x55;
        },
    };
    for (const auto& fault : faults) {
        SignedImage image;
        fault(image);
        EXPECT_EQ(image.signer(), std::nullopt);
    }
}

} // namespace
} // namespace tarn::platform

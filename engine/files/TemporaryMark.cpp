#include "engine/files/TemporaryMark.h"

#include "engine/support/Failure.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zelcore {

namespace {

// An MP4 file begins with a box of this kind: its size, the kind, the brand, the brand's version.
constexpr std::array<std::uint8_t, 4> kKind = {'f', 't', 'y', 'p'};
constexpr std::size_t kKindAt = 4;
constexpr std::array<std::uint8_t, 4> kMark = {'R', 'e', 'C', 'o'};
constexpr std::size_t kMarkAt = 12;
constexpr std::size_t kBytes = kMarkAt + kMark.size();

bool holds(std::span<const std::uint8_t> bytes, std::size_t at,
           std::span<const std::uint8_t> wanted) {
    return bytes.size() >= at + wanted.size() &&
           std::ranges::equal(bytes.subspan(at, wanted.size()), wanted);
}

} // namespace

std::string temporaryPrefix(const std::string& destinationName) {
    // Cut between two characters, so that numbers and suffix fit into the 255 bytes there are.
    std::size_t end = destinationName.size();
    if (end > 200) {
        end = 200;
        while (end > 0 && (static_cast<unsigned char>(destinationName[end]) & 0xC0U) == 0x80U) {
            --end;
        }
    }
    return "." + destinationName.substr(0, end) + ".";
}

std::string temporaryName(const std::string& destinationName, std::uint32_t process,
                          unsigned number) {
    return text(temporaryPrefix(destinationName), process, "-", number, kTemporarySuffix);
}

bool isTemporaryName(const std::string& name, const std::string& destinationName) {
    const std::string prefix = temporaryPrefix(destinationName);
    const std::string_view suffix = kTemporarySuffix;
    if (name.size() <= prefix.size() + suffix.size() || !name.starts_with(prefix) ||
        !name.ends_with(suffix)) {
        return false;
    }
    const std::string_view numbers =
        std::string_view(name).substr(prefix.size(), name.size() - prefix.size() - suffix.size());
    const auto dash = numbers.find('-');
    const auto isNumber = [](std::string_view digits) {
        return !digits.empty() && digits.size() <= 10 &&
               digits.find_first_not_of("0123456789") == std::string_view::npos;
    };
    return dash != std::string_view::npos && isNumber(numbers.substr(0, dash)) &&
           isNumber(numbers.substr(dash + 1));
}

void putMark(std::span<std::uint8_t> firstBytes) {
    if (holds(firstBytes, kKindAt, kKind) && firstBytes.size() >= kBytes) {
        std::ranges::copy(kMark, firstBytes.begin() + kMarkAt);
    }
}

bool carriesMark(const OsFile& file) {
    std::array<std::uint8_t, kBytes> bytes{};
    int error = 0;
    const std::int64_t got = file.readAt(0, bytes.data(), bytes.size(), error);
    return got == 0 || (got == static_cast<std::int64_t>(bytes.size()) &&
                        holds(bytes, kKindAt, kKind) && holds(bytes, kMarkAt, kMark));
}

} // namespace zelcore

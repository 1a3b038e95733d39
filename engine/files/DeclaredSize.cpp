#include "engine/files/DeclaredSize.h"

#include "engine/files/SourceFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <string_view>

namespace zelcore {

namespace {

std::uint64_t bigEndian(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

struct EbmlElement {
    std::uint64_t identifier = 0;
    std::uint64_t dataBegin = 0;
    std::optional<std::uint64_t> dataSize; ///< nothing: unknown, as live writers leave it
};

// RFC 8794: an identifier of 1 to 4 bytes, then a size of 1 to 8; the leading zero bits of the
// first byte give the length, and a size of all ones means unknown.
std::optional<EbmlElement> readElement(const SourceFile& file, std::uint64_t position) {
    std::array<std::uint8_t, 12> bytes{};
    const std::size_t have = file.peek(position, bytes.data(), bytes.size());
    const auto idLength = static_cast<std::size_t>(std::countl_zero(bytes[0])) + 1;
    if (idLength > 4 || have <= idLength) {
        return std::nullopt;
    }
    const auto sizeLength = static_cast<std::size_t>(std::countl_zero(bytes[idLength])) + 1;
    if (sizeLength > 8 || have < idLength + sizeLength) {
        return std::nullopt;
    }
    EbmlElement element;
    element.identifier = bigEndian(bytes.data(), idLength);
    element.dataBegin = position + idLength + sizeLength;
    const std::uint64_t mask = (std::uint64_t{1} << (7 * sizeLength)) - 1;
    const std::uint64_t size = bigEndian(bytes.data() + idLength, sizeLength) & mask;
    if (size != mask) {
        element.dataSize = size;
    }
    return element;
}

std::uint64_t matroskaSize(const SourceFile& file) {
    constexpr std::uint64_t kSegment = 0x18538067;
    const auto header = readElement(file, 0);
    if (!header || !header->dataSize) {
        return 0;
    }
    const auto segment = readElement(file, header->dataBegin + *header->dataSize);
    if (!segment || segment->identifier != kSegment || !segment->dataSize) {
        return 0;
    }
    return segment->dataBegin + *segment->dataSize;
}

struct Boxes {
    std::uint64_t end = 0; ///< of the last one, by its own word
    bool haveIndex = false;
};

bool isBox(std::string_view type) {
    static constexpr std::array<std::string_view, 14> kTypes = {
        "ftyp", "moov", "mdat", "free", "skip", "wide", "moof",
        "uuid", "styp", "sidx", "mfra", "meta", "pdin", "pnot"};
    return std::ranges::find(kTypes, type) != kTypes.end();
}

// ISO/IEC 14496-12, 4.2: boxes of a 32-bit size and a type; size 1: a 64-bit size follows; size 0:
// up to the end of the file.
Boxes readBoxes(const SourceFile& file) {
    Boxes boxes;
    while (boxes.end < file.state().size) {
        std::array<std::uint8_t, 16> bytes{};
        const std::size_t have = file.peek(boxes.end, bytes.data(), bytes.size());
        const std::string_view type(reinterpret_cast<const char*>(bytes.data()) + 4, 4);
        if (have < 8 || !isBox(type)) {
            return boxes; // something else is appended: no word about the rest
        }
        std::uint64_t size = bigEndian(bytes.data(), 4);
        if (size == 1) {
            size = bigEndian(bytes.data() + 8, 8);
        } else if (size == 0) {
            size = file.state().size - boxes.end;
        }
        if (size < 8 || size > UINT64_MAX - boxes.end) {
            return boxes;
        }
        boxes.haveIndex = boxes.haveIndex || type == "moov";
        boxes.end += size;
    }
    return boxes;
}

bool beginsWithBox(const std::array<std::uint8_t, 12>& head) {
    return isBox({reinterpret_cast<const char*>(head.data()) + 4, 4});
}

std::uint64_t riffSize(const std::array<std::uint8_t, 12>& head) {
    const auto size = bigEndian(std::array{head[7], head[6], head[5], head[4]}.data(), 4);
    // Writers to a pipe leave 0 or all ones.
    return size == 0 || size == 0xFFFFFFFF ? 0 : size + 8;
}

} // namespace

std::uint64_t declaredSize(const SourceFile& file) {
    std::array<std::uint8_t, 12> head{};
    if (file.peek(0, head.data(), head.size()) < head.size()) {
        return 0;
    }
    if (bigEndian(head.data(), 4) == 0x1A45DFA3) {
        return matroskaSize(file);
    }
    if (beginsWithBox(head)) {
        return readBoxes(file).end;
    }
    if (std::memcmp(head.data(), "RIFF", 4) == 0) {
        return riffSize(head);
    }
    return 0;
}

bool lacksIndex(const SourceFile& file) {
    std::array<std::uint8_t, 12> head{};
    return file.peek(0, head.data(), head.size()) == head.size() && beginsWithBox(head) &&
           !readBoxes(file).haveIndex;
}

} // namespace zelcore

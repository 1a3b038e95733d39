#include "log/LogScope.h"
#include "platform/Files.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace tarn {
namespace {

constexpr std::streamoff kBlock = 65536;

std::ifstream openInput(const std::string& path, std::ios::openmode mode = std::ios::in) {
    return std::ifstream(platform::nativePath(path), mode | std::ios::binary);
}

std::ofstream openOutput(const std::string& path) {
    return std::ofstream(platform::nativePath(path), std::ios::binary | std::ios::trunc);
}

/// Reports also what only shows when the last buffer is written.
bool finish(std::ofstream& stream) {
    stream.close();
    return !stream.fail();
}

bool readLine(std::istream& stream, std::string& line) {
    if (!std::getline(stream, line)) {
        line.clear();
        return false;
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return true;
}

/// Walks backwards from the current position to the nearest line break and steps behind it. False
/// when there is none. The byte at the current position is looked at too.
bool moveToStartOfLine(std::istream& stream) {
    std::array<char, kBlock> block{};
    for (std::streamoff end = stream.tellg() + std::streamoff{1}; end > 0;) {
        const std::streamoff begin = std::max<std::streamoff>(0, end - kBlock);
        stream.seekg(begin);
        if (!stream.read(block.data(), end - begin)) {
            return false;
        }
        const std::string_view text(block.data(), static_cast<std::size_t>(end - begin));
        if (const auto found = text.rfind('\n'); found != std::string_view::npos) {
            stream.seekg(begin + static_cast<std::streamoff>(found) + 1);
            return stream.good();
        }
        end = begin;
    }
    return false;
}

bool haveEqualContents(const std::string& left, const std::string& right) {
    std::ifstream leftStream = openInput(left);
    std::ifstream rightStream = openInput(right);
    std::vector<char> leftBlock(kBlock);
    std::vector<char> rightBlock(kBlock);
    while (leftStream.good() && rightStream.good()) {
        leftStream.read(leftBlock.data(), kBlock);
        rightStream.read(rightBlock.data(), kBlock);
        if (leftStream.gcount() != rightStream.gcount() ||
            !std::equal(leftBlock.begin(), leftBlock.begin() + leftStream.gcount(),
                        rightBlock.begin())) {
            return false;
        }
    }
    return leftStream.eof() && rightStream.eof();
}

} // namespace

bool FileUtils::copyFileIfDifferent(const std::string& from, const std::string& to) const {
    TARN_FILE_UTILS_SCOPE("copyFileIfDifferent");
    const auto source = platform::fileDetails(from);
    const auto target = platform::fileDetails(to);
    if (source && target && source->size == target->size && !source->isFolder &&
        haveEqualContents(from, to)) {
        return true;
    }
    return copyFile(from, to);
}

std::string FileUtils::readFirstLine(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("readFirstLine");
    std::ifstream stream = openInput(path);
    std::string line;
    readLine(stream, line);
    return line;
}

bool FileUtils::writeOneLine(const std::string& path, const std::string& line) const {
    TARN_FILE_UTILS_SCOPE("writeOneLine");
    std::ofstream stream = openOutput(path);
    stream << line << '\n';
    return finish(stream);
}

std::string FileUtils::readSpecifiedLine(const std::string& path, std::size_t number) const {
    TARN_FILE_UTILS_SCOPE("readSpecifiedLine");
    std::ifstream stream = openInput(path);
    std::string line;
    for (std::size_t current = 0; readLine(stream, line) && current < number; ++current) {
    }
    return line;
}

std::string FileUtils::readLastLine(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("readLastLine");
    std::ifstream stream = openInput(path, std::ios::ate);
    const std::streamoff size = stream.tellg();
    if (!stream || size <= 0) {
        return {};
    }
    // Three bytes before the end lie before a final line break, whichever it is.
    stream.seekg(std::max<std::streamoff>(0, size - 3));
    std::string line;
    if (moveToStartOfLine(stream)) {
        readLine(stream, line);
    }
    return line;
}

std::vector<std::string> FileUtils::readAllLines(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("readAllLines");
    std::ifstream stream = openInput(path);
    std::vector<std::string> lines;
    for (std::string line; readLine(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool FileUtils::writeAllLines(const std::string& path,
                              const std::vector<std::string>& lines) const {
    TARN_FILE_UTILS_SCOPE("writeAllLines");
    std::ofstream stream = openOutput(path);
    for (const std::string& line : lines) {
        stream << line << '\n';
    }
    return finish(stream);
}

bool FileUtils::canReadFirstBytes(const std::string& path, std::size_t count) const {
    TARN_FILE_UTILS_SCOPE("canReadFirstBytes");
    if (!accessible(path)) {
        return false;
    }
    std::ifstream stream = openInput(path);
    std::array<char, kBlock> block{};
    while (stream && count > 0) {
        const std::size_t wanted = std::min(count, block.size());
        stream.read(block.data(), static_cast<std::streamsize>(wanted));
        count -= wanted;
    }
    return stream.good();
}

std::optional<std::vector<std::uint8_t>> FileUtils::readAllBytes(const std::string& path) const {
    TARN_FILE_UTILS_SCOPE("readAllBytes");
    std::ifstream stream = openInput(path);
    std::vector<std::uint8_t> bytes;
    std::array<char, kBlock> block{};
    while (stream) {
        stream.read(block.data(), kBlock);
        bytes.insert(bytes.end(), block.begin(), block.begin() + stream.gcount());
    }
    return stream.eof() ? std::optional(std::move(bytes)) : std::nullopt;
}

bool FileUtils::writeAllBytes(const std::string& path,
                              const std::vector<std::uint8_t>& bytes) const {
    TARN_FILE_UTILS_SCOPE("writeAllBytes");
    std::ofstream stream = openOutput(path);
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    if (finish(stream)) {
        return true;
    }
    const std::uint32_t error = platform::lastFileError();
    TARN_FILE_UTILS_LOG(RootLoggerLevel::Error,
                        "Could not write '" << path << "', errorCode: " << error);
    return false;
}

} // namespace tarn

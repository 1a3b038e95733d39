#include "logging/archive/ZipWriter.h"

#include "platform/LocalTime.h"

#include <array>
#include <limits>
#include <utility>
#include <vector>
#include <zip.h>

namespace tarn {
namespace {

// Values of the zip format (APPNOTE 6.3): 4.4.2 made by Unix, version 4.5; 4.4.4 bit 11, the name
// is UTF-8; 4.4.15, on Unix the file's mode in the upper half.
constexpr uLong kMadeBy = (3U << 8U) | 45U;
constexpr uLong kUtf8Names = 1U << 11U;
constexpr uLong kPrivateFile = 0100600UL << 16U;
/// Entries from here on use Zip64: the compressed size may exceed the other a little.
constexpr std::uint64_t kZip64From = 0xF0000000U;
constexpr std::size_t kBlock = 262'144;

std::FILE* outputOf(void* stream) {
    return static_cast<std::FILE*>(stream);
}

void* openStream(void* opaque, const void* /*name*/, int /*mode*/) {
    return opaque;
}

uLong readStream(void* /*opaque*/, void* /*stream*/, void* /*buffer*/, uLong /*size*/) {
    return 0;
}

uLong writeStream(void* /*opaque*/, void* stream, const void* buffer, uLong size) {
    return static_cast<uLong>(std::fwrite(buffer, 1, size, outputOf(stream)));
}

ZPOS64_T tellStream(void* /*opaque*/, void* stream) {
    return static_cast<ZPOS64_T>(ftello64(outputOf(stream)));
}

long seekStream(void* /*opaque*/, void* stream, ZPOS64_T offset, int origin) {
    const int from = origin == ZLIB_FILEFUNC_SEEK_CUR   ? SEEK_CUR
                     : origin == ZLIB_FILEFUNC_SEEK_END ? SEEK_END
                                                        : SEEK_SET;
    return fseeko64(outputOf(stream), static_cast<std::int64_t>(offset), from);
}

int closeStream(void* /*opaque*/, void* stream) {
    return std::fflush(outputOf(stream));
}

int testStream(void* /*opaque*/, void* stream) {
    return std::ferror(outputOf(stream));
}

/// The format's own time is local, in steps of two seconds, and begins with 1980.
tm_zip zipTime(std::int64_t modified) {
    const std::tm local = platform::localTime(static_cast<std::time_t>(modified));
    if (local.tm_year < 80) {
        return {.tm_sec = 0, .tm_min = 0, .tm_hour = 0, .tm_mday = 1, .tm_mon = 0, .tm_year = 1980};
    }
    return {.tm_sec = static_cast<uInt>(local.tm_sec),
            .tm_min = static_cast<uInt>(local.tm_min),
            .tm_hour = static_cast<uInt>(local.tm_hour),
            .tm_mday = static_cast<uInt>(local.tm_mday),
            .tm_mon = static_cast<uInt>(local.tm_mon),
            .tm_year = static_cast<uInt>(local.tm_year + 1900)};
}

/// The "extended timestamp" extra field: the same time to the second, in UTC.
std::vector<char> exactTime(std::int64_t modified) {
    if (modified < 0 || modified > std::numeric_limits<std::int32_t>::max()) {
        return {};
    }
    std::vector<char> field{'U', 'T', 5, 0, 1};
    for (unsigned shift = 0; shift < 32; shift += 8) {
        field.push_back(static_cast<char>((static_cast<std::uint64_t>(modified) >> shift) & 0xFFU));
    }
    return field;
}

} // namespace

ZipWriter::ZipWriter(std::FILE* output) : mBlock(kBlock) {
    zlib_filefunc64_def functions{};
    functions.zopen64_file = openStream;
    functions.zread_file = readStream;
    functions.zwrite_file = writeStream;
    functions.ztell64_file = tellStream;
    functions.zseek64_file = seekStream;
    functions.zclose_file = closeStream;
    functions.zerror_file = testStream;
    functions.opaque = output;
    mZip = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &functions);
}

ZipWriter::~ZipWriter() {
    close();
}

ZipWriter::Result ZipWriter::add(const std::string& name, platform::ReadFile& content) {
    const std::int64_t modified = content.modified();
    zip_fileinfo info{};
    info.tmz_date = zipTime(modified);
    info.external_fa = kPrivateFile;
    const auto extra = exactTime(modified);
    const auto extraSize = static_cast<uInt>(extra.size());
    if (name.size() > std::numeric_limits<std::uint16_t>::max() ||
        zipOpenNewFileInZip4_64(mZip, name.c_str(), &info, extra.data(), extraSize, extra.data(),
                                extraSize, nullptr, Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0,
                                -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0, kMadeBy,
                                kUtf8Names, content.size() >= kZip64From ? 1 : 0) != ZIP_OK) {
        return Result::ZipFailed;
    }
    const Result written = writeContent(content);
    return zipCloseFileInZip(mZip) == ZIP_OK ? written : Result::ZipFailed;
}

ZipWriter::Result ZipWriter::writeContent(platform::ReadFile& content) {
    while (true) {
        const std::ptrdiff_t count = content.read(mBlock.data(), mBlock.size());
        if (count <= 0) {
            return count == 0 ? Result::Added : Result::ContentFailed;
        }
        if (zipWriteInFileInZip(mZip, mBlock.data(), static_cast<unsigned>(count)) != ZIP_OK) {
            return Result::ZipFailed;
        }
    }
}

bool ZipWriter::close() {
    return mZip != nullptr && zipClose(std::exchange(mZip, nullptr), nullptr) == ZIP_OK;
}

} // namespace tarn

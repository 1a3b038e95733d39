#include "platform/LibraryFile.h"

#include "platform/Text.h"
#include "platform/windows/Handle.h"
#include "platform/windows/SystemPath.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <utility>

namespace tarn::platform {
namespace {

static_assert(sizeof(std::intptr_t) == sizeof(HANDLE));

std::intptr_t openForLoading(const std::wstring& path) {
    // Without sharing of writes and deletion; the loader itself only reads.
    return reinterpret_cast<std::intptr_t>(CreateFileW(systemPath(path).c_str(), GENERIC_READ,
                                                       FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                                       FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// `\\?\C:\folder\file` and `\\?\UNC\server\share\file` without their prefixes.
std::wstring withoutPrefix(const std::wstring& path) {
    if (path.starts_with(L"\\\\?\\UNC\\")) {
        return L"\\\\" + path.substr(8);
    }
    return path.starts_with(L"\\\\?\\") ? path.substr(4) : path;
}

std::wstring resolved(const std::wstring& path) {
    const std::wstring plain = withoutPrefix(path);
    std::wstring full(GetFullPathNameW(plain.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(plain.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

std::wstring finalPath(HANDLE file) {
    std::wstring path(MAX_PATH, L'\0');
    while (true) {
        const DWORD length = GetFinalPathNameByHandleW(
            file, path.data(), static_cast<DWORD>(path.size()), VOLUME_NAME_DOS);
        const bool isWhole = length < path.size();
        path.resize(length);
        if (isWhole) {
            return withoutPrefix(path);
        }
    }
}

/// A file mapped the way it would be loaded, without running any of it: addresses relative to the
/// image are offsets here. Every one is checked, since nobody has vouched for the file yet.
class MappedImage {
public:
    explicit MappedImage(HANDLE file)
        : mMapping(CreateFileMappingW(file, nullptr, PAGE_READONLY | SEC_IMAGE, 0, 0, nullptr)) {
        if (mMapping) {
            mBase = static_cast<const std::byte*>(
                MapViewOfFile(mMapping.get(), FILE_MAP_READ, 0, 0, 0));
        }
        MEMORY_BASIC_INFORMATION region{};
        for (const std::byte* end = mBase;
             mBase != nullptr && VirtualQuery(end, &region, sizeof(region)) != 0 &&
             region.AllocationBase == mBase;
             end = mBase + mSize) {
            mSize += region.RegionSize;
        }
    }
    MappedImage(const MappedImage&) = delete;
    MappedImage& operator=(const MappedImage&) = delete;
    ~MappedImage() {
        if (mBase != nullptr) {
            UnmapViewOfFile(mBase);
        }
    }

    /// Null when the structure does not lie inside the image.
    template <typename Structure>
    const Structure* at(std::size_t offset) const {
        return offset < mSize && mSize - offset >= sizeof(Structure)
                   ? reinterpret_cast<const Structure*>(mBase + offset)
                   : nullptr;
    }
    std::string textAt(std::size_t offset) const {
        std::string text;
        for (const char* next = at<char>(offset); next != nullptr && *next != '\0';
             next = at<char>(++offset)) {
            text += *next;
        }
        return text;
    }

private:
    Handle mMapping;
    const std::byte* mBase = nullptr;
    std::size_t mSize = 0;
};

// Microsoft's "PE Format", section "The .idata Section": an array of descriptors, the last one of
// zeros, each with the name of a library.
std::vector<std::string> importedNames(const MappedImage& image) {
    std::vector<std::string> names;
    const auto* dos = image.at<IMAGE_DOS_HEADER>(0);
    const auto* headers =
        dos == nullptr || dos->e_lfanew < 0
            ? nullptr
            : image.at<IMAGE_NT_HEADERS64>(static_cast<std::size_t>(dos->e_lfanew));
    if (headers == nullptr || headers->OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
        return names;
    }
    std::size_t place =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    const auto* entry = image.at<IMAGE_IMPORT_DESCRIPTOR>(place);
    while (place != 0 && entry != nullptr && entry->Name != 0) {
        names.push_back(image.textAt(entry->Name));
        place += sizeof(IMAGE_IMPORT_DESCRIPTOR);
        entry = image.at<IMAGE_IMPORT_DESCRIPTOR>(place);
    }
    return names;
}

} // namespace

LibraryFile::LibraryFile(const std::wstring& path)
    : mHandle(openForLoading(path)), mPath(path), mGivenPath(resolved(path)) {
    if (isOpen()) {
        mPath = finalPath(reinterpret_cast<HANDLE>(mHandle));
    }
}

LibraryFile::LibraryFile(LibraryFile&& other) noexcept
    : mHandle(std::exchange(other.mHandle, kNone)),
      mPath(std::move(other.mPath)),
      mGivenPath(std::move(other.mGivenPath)) {
}

LibraryFile::~LibraryFile() {
    if (isOpen()) {
        CloseHandle(reinterpret_cast<HANDLE>(mHandle));
    }
}

std::vector<std::wstring> LibraryFile::neighbours() const {
    std::vector<std::wstring> paths;
    const std::wstring folder = mPath.substr(0, mPath.find_last_of(L'\\') + 1);
    for (const std::string& name : importedNames(MappedImage(reinterpret_cast<HANDLE>(mHandle)))) {
        std::wstring path = folder + toWide(name);
        if (GetFileAttributesW(systemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

} // namespace tarn::platform

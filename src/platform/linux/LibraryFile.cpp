#include "platform/LibraryFile.h"

#include <utility>

namespace tarn::platform {

LibraryFile::LibraryFile(const std::wstring& path) : mHandle(0), mPath(path), mGivenPath(path) {
}

LibraryFile::LibraryFile(LibraryFile&& other) noexcept
    : mHandle(other.mHandle),
      mPath(std::move(other.mPath)),
      mGivenPath(std::move(other.mGivenPath)) {
}

LibraryFile::~LibraryFile() = default;

std::vector<std::wstring> LibraryFile::neighbours() const {
    return {};
}

} // namespace tarn::platform

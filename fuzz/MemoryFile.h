#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace fuzz {

/// A file that exists in memory only, with a path that any code can open.
class MemoryFile {
public:
    MemoryFile(const void* data, std::size_t size) : mDescriptor(::memfd_create("fuzz", 0)) {
        if (mDescriptor < 0 || ::write(mDescriptor, data, size) != static_cast<ssize_t>(size)) {
            std::abort();
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { ::close(mDescriptor); }

    std::string path() const { return "/proc/self/fd/" + std::to_string(mDescriptor); }

private:
    int mDescriptor;
};

} // namespace fuzz

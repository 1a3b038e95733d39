#include "platform/Library.h"

#include "log/LogCall.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarn::platform {
namespace {

thread_local std::uint32_t lastFailure = 0;
/// Ends with a NUL. An array, because nothing here may need a destructor.
thread_local std::array<char, 512> lastFailureText{};

void keepFailure(int error, std::string_view text) {
    lastFailure = static_cast<std::uint32_t>(error);
    lastFailureText = {};
    std::copy_n(text.begin(), std::min(text.size(), lastFailureText.size() - 1),
                lastFailureText.begin());
}

/// dlopen reports text only: finds the errno value that says best why a file would not load.
int reasonOfFailure(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        return errno;
    }
    std::array<char, SELFMAG> magic{};
    const bool isElf = read(file, magic.data(), magic.size()) == SELFMAG &&
                       std::memcmp(magic.data(), ELFMAG, SELFMAG) == 0;
    close(file);
    return isElf ? ELIBACC : ELIBBAD;
}

LibraryHandle load(const std::wstring& widePath) {
    const std::string path = toUtf8(widePath);
    // A name without a separator would be searched for in LD_LIBRARY_PATH, a relative path in the
    // working folder.
    if (!isAbsolutePath(path) || path.find('\0') != std::string::npos) {
        refuseToLoad(LoadRefusal::NoFullPath);
        return nullptr;
    }
    LibraryHandle handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) {
        return handle;
    }
    const char* text = dlerror(); // NOLINT(concurrency-mt-unsafe): per thread in glibc
    const int reason = reasonOfFailure(path);
    if (reason != ENOENT && text != nullptr) {
        TARN_LOG(RootLoggerLevel::Debug, "dlopen: " << text);
    }
    keepFailure(reason, text != nullptr ? text : "");
    return nullptr;
}

} // namespace

LibraryHandle loadWithAlteredSearchPath(const std::wstring& path) {
    return load(path);
}

LibraryHandle loadWithSystemSearchPath(const std::wstring& path) {
    return load(path);
}

void* findSymbol(LibraryHandle library, const char* name) {
    // A null handle would mean "search the whole program" to dlsym.
    void* symbol = library != nullptr ? dlsym(library, name) : nullptr;
    if (symbol == nullptr) {
        lastFailure = library != nullptr ? ENOENT : EINVAL;
    }
    return symbol;
}

bool unload(LibraryHandle library) {
    if (library == nullptr || dlclose(library) != 0) {
        lastFailure = EINVAL;
        return false;
    }
    return true;
}

bool addLibraryFolder(const std::wstring& /*folder*/) {
    return true;
}

void pinThisModule() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&pinThisModule), &info) != 0) {
        dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    }
}

std::uint32_t lastError() {
    return lastFailure;
}

std::string loadFailureText() {
    std::string text = lastFailureText.data();
    return text.empty() ? std::generic_category().message(static_cast<int>(lastFailure)) : text;
}

void refuseToLoad(LoadRefusal reason) {
    if (reason == LoadRefusal::Policy) {
        keepFailure(EPERM, "the side-loading policy refuses it");
    } else {
        keepFailure(EINVAL, "its path is not absolute");
    }
}

void useDefaultLibraryFolders() {
}

std::string libraryFileName(const std::string& baseName) {
    return "lib" + baseName + ".so";
}

} // namespace tarn::platform

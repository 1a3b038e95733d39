#include "engine/platform/OsPath.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelcore {

int stateOf(const std::string& path, FileState& state) {
    OsFile file;
    const int error = OsFile::openForState(path, file);
    return error != 0 ? error : file.state(state);
}

bool isLink(const std::string& path) {
    struct stat found {};
    return ::lstat(path.c_str(), &found) == 0 && S_ISLNK(found.st_mode);
}

bool isWriteProtected(const std::string& path) {
    struct stat found {};
    // Who runs as root may write everything, and still means something by taking that bit away.
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 ||
           (::stat(path.c_str(), &found) == 0 && (found.st_mode & 0222U) == 0);
}

std::string folderOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string joinPath(const std::string& folder, const std::string& name) {
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

int replaceFile(const std::string& from, const std::string& to) {
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int renameNew(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) {
        return errno;
    }
    // A file system that cannot say so in one step: a second name, which must be new, as well.
    if (::link(from.c_str(), to.c_str()) == 0) {
        return ::unlink(from.c_str()) == 0 ? 0 : errno;
    }
    if (errno != EPERM && errno != ENOSYS && errno != EOPNOTSUPP && errno != EMLINK) {
        return errno;
    }
    // Without second names: an empty file that must be new, and that is ours to replace.
    const int place = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (place < 0) {
        return errno;
    }
    ::close(place);
    return replaceFile(from, to);
}

int removeFile(const std::string& path) {
    return ::unlink(path.c_str()) == 0 ? 0 : errno;
}

int syncFolder(const std::string& folder) {
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) {
        return errno;
    }
    int error = ::fsync(handle) == 0 ? 0 : errno;
    if (error == EINVAL || error == ENOTSUP) {
        error = 0; // a file system that has nothing to sync for a folder
    }
    ::close(handle);
    return error;
}

std::vector<std::string> namesIn(const std::string& folder, const std::string& prefix,
                                 const std::string& suffix) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()),
                                                   [](DIR* dir) { return ::closedir(dir); });
    if (open == nullptr) {
        return names;
    }
    while (const dirent* entry = ::readdir(open.get())) {
        std::string name = entry->d_name;
        if (name.size() >= prefix.size() + suffix.size() && name.starts_with(prefix) &&
            name.ends_with(suffix)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

std::uint32_t currentProcessId() {
    return static_cast<std::uint32_t>(::getpid());
}

bool isMemoryLeft(std::size_t size) {
    void* memory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && ::munmap(memory, size) == 0;
}

void prepareEngineThread(const char* name) {
    ::prctl(PR_SET_NAME, name);
    // The program's handlers run on its own threads, and a write past a size limit is to fail
    // with EFBIG instead of ending the process. Threads that FFmpeg starts inherit the mask.
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS}) {
        sigdelset(&blocked, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
}

void callAtQuickExit(void (*call)()) {
    static_cast<void>(std::at_quick_exit(call)); // fails only for want of memory
}

void pinThisLibrary() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<const void*>(&pinThisLibrary), &info) != 0) {
        ::dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    }
}

} // namespace zelcore

// Preloaded into a program under test: chosen system calls on chosen files fail, come up short, or
// are the last that the process gets to make. FAULTY_CALLS holds the rules, separated by ';':
//
//   CALL PATH-PART FIRST LAST ACTION
//
// CALL is one of open, read, write, fsync, flush (a part), close, rename, unlink; those at a
// position, or in a folder that is open, count too. From the FIRST to the LAST such call on a path
// that holds PATH-PART (counted from 1, LAST 0: for ever) ACTION happens instead: an errno number,
// "short", "drop" (a write is said to have been done), or "kill". An ACTION that is a path gives
// that file the present time, and the call is made.

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <deque>
#include <dlfcn.h>
#include <fcntl.h>
#include <sstream>
#include <string>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr int kShort = -1;
constexpr int kDropped = -2;

struct Rule {
    std::string call;
    std::string pathPart;
    long first = 1;
    long last = 0;
    std::string action;
    std::atomic<long> calls{0};
};

std::deque<Rule>& rules() {
    static std::deque<Rule>& all = *[] {
        auto* read = new std::deque<Rule>;
        const char* variable = std::getenv("FAULTY_CALLS");
        std::istringstream texts(variable == nullptr ? "" : variable);
        for (std::string text; std::getline(texts, text, ';');) {
            Rule& rule = read->emplace_back();
            std::istringstream(text) >> rule.call >> rule.pathPart >> rule.first >> rule.last >>
                rule.action;
        }
        return read;
    }();
    return all;
}

/// What is to happen instead of a call: an errno number, which is set then, kShort, kDropped, or
/// 0: nothing.
int faultOf(const char* call, const std::string& path) {
    for (Rule& rule : rules()) {
        if (rule.call != call || !path.contains(rule.pathPart)) {
            continue;
        }
        const long count = ++rule.calls;
        if (count < rule.first || (rule.last != 0 && count > rule.last)) {
            continue;
        }
        if (rule.action == "kill") {
            ::raise(SIGKILL);
        }
        if (rule.action == "short") {
            return kShort;
        }
        if (rule.action == "drop") {
            return kDropped;
        }
        if (rule.action.starts_with('/')) {
            ::utimes(rule.action.c_str(), nullptr);
            return 0;
        }
        return errno = std::atoi(rule.action.c_str());
    }
    return 0;
}

int faultOf(const char* call, int file) {
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t size = ::readlink(link.c_str(), path, sizeof path);
    return size <= 0 ? 0 : faultOf(call, std::string(path, static_cast<std::size_t>(size)));
}

/// The call itself, unless it has to fail.
template <class Result, class... Arguments>
Result call(const char* name, int fault, Arguments... arguments) {
    return fault > 0
               ? Result{-1}
               : reinterpret_cast<Result (*)(Arguments...)>(::dlsym(RTLD_NEXT, name))(arguments...);
}

std::size_t shortened(int fault, std::size_t size) {
    return fault == kShort ? (size + 1) / 2 : size;
}

} // namespace

extern "C" {

ssize_t read(int file, void* buffer, std::size_t size) {
    const int fault = faultOf("read", file);
    return call<ssize_t>("read", fault, file, buffer, shortened(fault, size));
}

ssize_t pread(int file, void* buffer, std::size_t size, off_t at) {
    const int fault = faultOf("read", file);
    return call<ssize_t>("pread", fault, file, buffer, shortened(fault, size), at);
}

ssize_t write(int file, const void* buffer, std::size_t size) {
    const int fault = faultOf("write", file);
    return call<ssize_t>("write", fault, file, buffer, shortened(fault, size));
}

ssize_t pwrite(int file, const void* buffer, std::size_t size, off_t at) {
    const int fault = faultOf("write", file);
    if (fault == kDropped) {
        return static_cast<ssize_t>(size);
    }
    return call<ssize_t>("pwrite", fault, file, buffer, shortened(fault, size), at);
}

ssize_t writev(int file, const iovec* parts, int count) {
    const int fault = faultOf("write", file);
    const iovec half{parts->iov_base, shortened(fault, parts->iov_len)};
    return fault == kShort ? call<ssize_t>("writev", fault, file, &half, 1)
                           : call<ssize_t>("writev", fault, file, parts, count);
}

int fsync(int file) {
    return call<int>("fsync", faultOf("fsync", file), file);
}

int sync_file_range(int file, off_t at, off_t size, unsigned int flags) {
    return call<int>("sync_file_range", faultOf("flush", file), file, at, size, flags);
}

int close(int file) {
    // As the system does it: the file is closed whatever close() says.
    const int fault = faultOf("close", file);
    const int result = call<int>("close", 0, file);
    return fault > 0 ? (errno = fault, -1) : result;
}

int rename(const char* from, const char* to) noexcept {
    return call<int>("rename", faultOf("rename", from), from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned int flags) noexcept {
    return call<int>("renameat2", faultOf("rename", from), fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path) noexcept {
    return call<int>("unlink", faultOf("unlink", path), path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    return call<int>("unlinkat", faultOf("unlink", path), folder, path, flags);
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return call<int>("open", faultOf("open", path), path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return call<int>("openat", faultOf("open", path), folder, path, flags, mode);
}
}

// Preloaded into a program under test: chosen system calls on chosen files fail, come up short, or
// are the last that the process gets to make. FAULTY_CALLS holds the rules, separated by ';':
//
//   CALL PATH-PART FIRST LAST ACTION
//
// CALL is one of open, read, write, fsync, close, rename, unlink; reads and writes at a position
// count too. From the FIRST to the LAST such call on a path that holds PATH-PART (counted from 1,
// LAST 0: for ever) ACTION happens instead: an errno number, "short", or "kill".

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
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr int kNone = 0;
constexpr int kShort = -1;
constexpr int kKill = -2;

struct Rule {
    std::string call;
    std::string pathPart;
    long first = 1;
    long last = 0;
    int action = kNone;
    std::atomic<long> calls{0};
};

std::deque<Rule> readRules() {
    std::deque<Rule> rules;
    const char* variable = std::getenv("FAULTY_CALLS");
    std::istringstream texts(variable == nullptr ? "" : variable);
    for (std::string text; std::getline(texts, text, ';');) {
        Rule& rule = rules.emplace_back();
        std::string action;
        std::istringstream(text) >> rule.call >> rule.pathPart >> rule.first >> rule.last >> action;
        rule.action = action == "short"  ? kShort
                      : action == "kill" ? kKill
                                         : std::atoi(action.c_str());
    }
    return rules;
}

/// What is to happen instead of a call. Leaves errno as the call has to.
int faultOf(const char* call, const std::string& path) {
    static std::deque<Rule>& rules = *new std::deque<Rule>(readRules());
    for (Rule& rule : rules) {
        if (rule.call != call || path.find(rule.pathPart) == std::string::npos) {
            continue;
        }
        const long count = ++rule.calls;
        if (count < rule.first || (rule.last != 0 && count > rule.last)) {
            continue;
        }
        if (rule.action == kKill) {
            ::raise(SIGKILL);
        }
        if (rule.action > 0) {
            errno = rule.action;
        }
        return rule.action;
    }
    return kNone;
}

int faultOf(const char* call, int file) {
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t size = ::readlink(link.c_str(), path, sizeof path);
    return size <= 0 ? kNone : faultOf(call, std::string(path, static_cast<std::size_t>(size)));
}

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

std::size_t shortened(int fault, std::size_t size) {
    return fault == kShort ? (size + 1) / 2 : size;
}

} // namespace

extern "C" {

ssize_t read(int file, void* buffer, std::size_t size) {
    static const auto real = next<ssize_t (*)(int, void*, std::size_t)>("read");
    const int fault = faultOf("read", file);
    return fault > 0 ? -1 : real(file, buffer, shortened(fault, size));
}

ssize_t pread(int file, void* buffer, std::size_t size, off_t at) {
    static const auto real = next<ssize_t (*)(int, void*, std::size_t, off_t)>("pread");
    const int fault = faultOf("read", file);
    return fault > 0 ? -1 : real(file, buffer, shortened(fault, size), at);
}

ssize_t pread64(int file, void* buffer, std::size_t size, off64_t at) {
    return pread(file, buffer, size, at);
}

ssize_t write(int file, const void* buffer, std::size_t size) {
    static const auto real = next<ssize_t (*)(int, const void*, std::size_t)>("write");
    const int fault = faultOf("write", file);
    return fault > 0 ? -1 : real(file, buffer, shortened(fault, size));
}

ssize_t writev(int file, const iovec* parts, int count) {
    static const auto real = next<ssize_t (*)(int, const iovec*, int)>("writev");
    const int fault = faultOf("write", file);
    if (fault == kShort && count > 0) {
        const iovec& last = parts[count - 1];
        const iovec half{last.iov_base, shortened(fault, last.iov_len)};
        return count > 1 ? real(file, parts, count - 1) : real(file, &half, 1);
    }
    return fault > 0 ? -1 : real(file, parts, count);
}

ssize_t pwrite(int file, const void* buffer, std::size_t size, off_t at) {
    static const auto real = next<ssize_t (*)(int, const void*, std::size_t, off_t)>("pwrite");
    const int fault = faultOf("write", file);
    return fault > 0 ? -1 : real(file, buffer, shortened(fault, size), at);
}

ssize_t pwrite64(int file, const void* buffer, std::size_t size, off64_t at) {
    return pwrite(file, buffer, size, at);
}

int fsync(int file) {
    static const auto real = next<int (*)(int)>("fsync");
    return faultOf("fsync", file) > 0 ? -1 : real(file);
}

int close(int file) {
    static const auto real = next<int (*)(int)>("close");
    // As the system does it: the file is closed whatever close() says.
    const int fault = faultOf("close", file);
    const int result = real(file);
    if (fault > 0) {
        errno = fault;
        return -1;
    }
    return result;
}

int rename(const char* from, const char* to) noexcept {
    static const auto real = next<int (*)(const char*, const char*)>("rename");
    return faultOf("rename", std::string(from)) > 0 ? -1 : real(from, to);
}

int unlink(const char* path) noexcept {
    static const auto real = next<int (*)(const char*)>("unlink");
    return faultOf("unlink", std::string(path)) > 0 ? -1 : real(path);
}

int remove(const char* path) noexcept {
    static const auto real = next<int (*)(const char*)>("remove");
    return faultOf("unlink", std::string(path)) > 0 ? -1 : real(path);
}

int open(const char* path, int flags, ...) {
    static const auto real = next<int (*)(const char*, int, mode_t)>("open");
    mode_t mode = 0;
    if ((flags & (O_CREAT | O_TMPFILE)) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return faultOf("open", std::string(path)) > 0 ? -1 : real(path, flags, mode);
}
}

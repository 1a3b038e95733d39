#include "platform/Identity.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarn::platform {

std::optional<std::string> computerName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) {
        return std::nullopt;
    }
    return std::string(name.data());
}

std::optional<std::string> userName() {
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr) {
        return std::nullopt;
    }
    return std::string(found->pw_name);
}

std::uint32_t processId() {
    return static_cast<std::uint32_t>(getpid());
}

bool isProcessRunning(std::uint32_t processId) {
    return kill(static_cast<pid_t>(processId), 0) == 0 || errno != ESRCH;
}

std::uint32_t threadId() {
    thread_local const auto id = static_cast<std::uint32_t>(syscall(SYS_gettid));
    return id;
}

std::string programFile() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

} // namespace tarn::platform

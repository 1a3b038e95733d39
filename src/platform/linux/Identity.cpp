#include "platform/Identity.h"

#include "platform/KnownFolders.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarn::platform {

namespace {

using Buffer = std::array<char, 16384>;

/// Looks a user up in the database.
template <typename Key>
std::optional<passwd> find(int (*lookUp)(Key, passwd*, char*, std::size_t, passwd**), Key key,
                           Buffer& buffer) {
    passwd entry{};
    passwd* found = nullptr;
    const bool isFound =
        lookUp(key, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr;
    return isFound ? std::optional(entry) : std::nullopt;
}

/// The user whom a variable names or numbers.
std::optional<passwd> findInvoker(const char* variable, Buffer& buffer) {
    const std::string value = environmentVariable(variable).value_or("");
    uid_t number = 0;
    const auto* const end = value.data() + value.size();
    if (std::from_chars(value.data(), end, number).ptr == end && !value.empty()) {
        return find<uid_t>(getpwuid_r, number, buffer);
    }
    return find<const char*>(getpwnam_r, value.c_str(), buffer);
}

} // namespace

std::optional<std::string> computerName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) {
        return std::nullopt;
    }
    return std::string(name.data());
}

std::optional<std::string> userName() {
    Buffer buffer;
    const auto entry = find<uid_t>(getpwuid_r, geteuid(), buffer);
    return entry ? std::optional<std::string>(entry->pw_name) : std::nullopt;
}

std::vector<std::string> otherPersonalTexts() {
    std::vector<std::string> texts;
    Buffer buffer;
    if (const auto entry = find<uid_t>(getpwuid_r, geteuid(), buffer)) {
        texts.emplace_back(entry->pw_dir);
    }
    for (const char* variable : {"SUDO_USER", "SUDO_UID", "PKEXEC_UID", "DOAS_USER"}) {
        if (const auto entry = findInvoker(variable, buffer)) {
            texts.emplace_back(entry->pw_name);
            texts.emplace_back(entry->pw_dir);
        }
    }
    std::erase(texts, "/"); // of users who are no persons; it would hide every path
    return texts;
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

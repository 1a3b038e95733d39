#include "support/Process.h"

#include "support/Clock.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace benchmarks {
namespace {

int waitFor(pid_t process, rusage& usage) {
    int status = 0;
    while (wait4(process, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            throw std::runtime_error(std::string("wait4: ") + std::strerror(errno));
        }
    }
    return status;
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

std::string endOf(const std::string& path) {
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.size() > 2000 ? text.substr(text.size() - 2000) : text;
}

void writeFigures(int descriptor, const Figures& figures) {
    std::string text;
    for (const auto& [key, value] : figures) {
        char digits[64];
        std::snprintf(digits, sizeof digits, "%.17g", value);
        text += key + "=" + digits + "\n";
    }
    // Small enough for a pipe's buffer, so that one write takes it.
    if (write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        _exit(3);
    }
}

Figures readFigures(int descriptor) {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(descriptor, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    Figures figures;
    for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
        const std::string line = text.substr(begin, end - begin);
        const auto separator = line.rfind('=');
        figures[line.substr(0, separator)] = std::stod(line.substr(separator + 1));
    }
    return figures;
}

} // namespace

Usage runCommand(const std::vector<std::string>& command, const std::string& log) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const double begin = monotonicSeconds();
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error(command[0] + ": " + std::strerror(error));
    }
    rusage usage{};
    const int status = waitFor(process, usage);
    Usage result;
    result.wallSeconds = monotonicSeconds() - begin;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error(command[0] + " failed:\n" + endOf(log));
    }
    result.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    result.peakMegabytes = static_cast<double>(usage.ru_maxrss) * 1024.0 / 1e6;
    return result;
}

Figures inChildProcess(const std::function<Figures()>& body) {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
    }
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process < 0) {
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    }
    if (process == 0) {
        close(ends[0]);
        try {
            writeFigures(ends[1], body());
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s\n", error.what());
            _exit(1);
        }
        _exit(0);
    }
    close(ends[1]);
    const Figures figures = readFigures(ends[0]);
    close(ends[0]);
    rusage usage{};
    if (const int status = waitFor(process, usage); !WIFEXITED(status) || status != 0) {
        throw std::runtime_error("the measuring process failed");
    }
    return figures;
}

} // namespace benchmarks

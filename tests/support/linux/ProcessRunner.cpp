#include "support/ProcessRunner.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tarn::testing {
namespace {

using Clock = std::chrono::steady_clock;

std::vector<std::string> environmentOf(const Process::Start& start) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        result.emplace_back(*entry);
    }
    for (const auto& [name, value] : start.environment) {
        const std::string begin = name + "=";
        std::erase_if(result, [&](const auto& entry) { return entry.starts_with(begin); });
        if (!value.empty()) {
            result.push_back(begin + value);
        }
    }
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

struct Process::Implementation {
    struct Pipe {
        std::array<int, 2> ends{-1, -1};
        std::string text;

        Pipe() {
            if (pipe2(ends.data(), O_CLOEXEC) != 0) {
                throw std::runtime_error("no pipe");
            }
        }
        ~Pipe() {
            closeEnd(0);
            closeEnd(1);
        }
        Pipe(const Pipe&) = delete;
        Pipe& operator=(const Pipe&) = delete;

        void closeEnd(std::size_t end) {
            if (ends[end] >= 0) {
                close(ends[end]);
                ends[end] = -1;
            }
        }
        void read() {
            std::array<char, 4096> buffer{};
            const ssize_t size = ::read(ends[0], buffer.data(), buffer.size());
            if (size > 0) {
                text.append(buffer.data(), static_cast<std::size_t>(size));
            } else {
                closeEnd(0);
            }
        }
    };

    pid_t pid = -1;
    std::optional<int> status;
    std::array<Pipe, 2> pipes;

    explicit Implementation(const Start& start) {
        std::vector<std::string> command = start.command;
        std::vector<std::string> environment = environmentOf(start);
        const std::vector<char*> arguments = pointersTo(command);
        const std::vector<char*> variables = pointersTo(environment);
        pid = fork();
        if (pid == 0) {
            // A group of its own, so that nothing the program starts outlives the test.
            setpgid(0, 0);
            dup2(pipes[0].ends[1], STDOUT_FILENO);
            dup2(pipes[1].ends[1], STDERR_FILENO);
            if (start.folder.empty() || chdir(start.folder.c_str()) == 0) {
                execve(arguments[0], arguments.data(), variables.data());
            }
            _exit(127);
        }
        if (pid < 0) {
            throw std::runtime_error("can not start " + start.command.front());
        }
        for (Pipe& pipe : pipes) {
            pipe.closeEnd(1);
        }
    }

    /// Reads until both pipes are closed, `enough` says so, or the time is up.
    template <typename Enough>
    void readUntil(Clock::time_point deadline, const Enough& enough) {
        while (!enough() && (pipes[0].ends[0] >= 0 || pipes[1].ends[0] >= 0)) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            std::array<pollfd, 2> polled{
                {{pipes[0].ends[0], POLLIN, 0}, {pipes[1].ends[0], POLLIN, 0}}};
            if (left.count() <= 0 ||
                poll(polled.data(), polled.size(), static_cast<int>(left.count())) <= 0) {
                return;
            }
            for (std::size_t i = 0; i < polled.size(); ++i) {
                if (polled[i].revents != 0) {
                    pipes[i].read();
                }
            }
        }
    }

    void reap(int options) {
        int raw = 0;
        if (!status && waitpid(pid, &raw, options) == pid) {
            status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
        }
    }
};

Process::Process(const Start& start) : mImplementation(std::make_unique<Implementation>(start)) {
}

Process::~Process() {
    kill();
}

std::optional<int> Process::wait(std::chrono::milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    mImplementation->readUntil(deadline, [] { return false; });
    if (Clock::now() < deadline) {
        // Closed pipes mean that the program has ended or is about to.
        mImplementation->reap(0);
    }
    return mImplementation->status;
}

bool Process::waitForOutput(const std::string& text, std::chrono::milliseconds patience) {
    const auto found = [&] {
        return output().find(text) != std::string::npos || errors().find(text) != std::string::npos;
    };
    mImplementation->readUntil(Clock::now() + patience, found);
    return found();
}

void Process::interrupt() {
    if (!mImplementation->status) {
        ::kill(mImplementation->pid, SIGINT);
    }
}

bool Process::canInterrupt() {
    return true;
}

void Process::kill() {
    if (!mImplementation->status) {
        ::kill(-mImplementation->pid, SIGKILL);
        mImplementation->reap(0);
    }
}

std::string Process::output() const {
    return mImplementation->pipes[0].text;
}

std::string Process::errors() const {
    return mImplementation->pipes[1].text;
}

} // namespace tarn::testing

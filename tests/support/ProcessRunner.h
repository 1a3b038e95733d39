#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::testing {

/// A program started by a test, with pipes for its output. All texts are UTF-8.
class Process {
public:
    struct Start {
        std::vector<std::string> command; ///< the program's path first
        /// Added to the test's own environment; a variable with an empty value is taken away.
        std::vector<std::pair<std::string, std::string>> environment;
        std::string folder; ///< to run in; empty: the test's own
    };
    /// Throws std::runtime_error when the program can not be started.
    explicit Process(const Start& start);
    /// Kills the program when it still runs.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Waits for the end and gives the exit status, 128 + N for an end by signal N; nothing when
    /// the patience is over first.
    std::optional<int> wait(std::chrono::milliseconds patience = std::chrono::minutes(2));
    /// Waits until the output holds the text; false when the program ends or the patience is over.
    bool waitForOutput(const std::string& text,
                       std::chrono::milliseconds patience = std::chrono::minutes(1));
    /// Ctrl-C: SIGINT, or a console event on Windows.
    void interrupt();
    /// False on Windows without a console, as under Wine with no terminal.
    static bool canInterrupt();
    void kill();

    /// What came so far, whole after wait().
    std::string output() const;
    std::string errors() const;

private:
    struct Implementation;
    std::unique_ptr<Implementation> mImplementation;
};

struct ProcessResult {
    int status = -1; ///< -1: did not end in time
    std::string output;
    std::string errors;
};

/// Runs a program to its end.
inline ProcessResult runProcess(const Process::Start& start) {
    Process process(start);
    const int status = process.wait().value_or(-1);
    return {status, process.output(), process.errors()};
}

} // namespace tarn::testing

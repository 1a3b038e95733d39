// An engine for tests, loaded from disk as the real one is. The first source file is its script,
// one command in a line:
//
//   result N      what the start call returns (hexadecimal with 0x); a failure runs nothing
//   progress P    OnProgress(P) from the engine's thread; "nan" and "inf" are taken too
//   error N       OnError(N)
//   write TEXT    writes the destination
//   settings      writes what ZelConversionSetting was told to the destination
//   lose TEXT     the sentence for ZelConversionLosses; without the caller's word an error, and
//                 nothing more runs
//   crash         ends the process from the engine's thread
//   hold          waits until a stop is asked for, and goes on even then
//
// Where nothing runs, FAKE_ENDING holds what ZelConversionEnding tells ("20005 reason") and
// FAKE_LOSSES the other sentence.

#include "zel/EngineContract.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#ifndef FAKE_FACTORY_RESULT
#define FAKE_FACTORY_RESULT 0
#endif

namespace {

using Sink = zel::IZelMediaConverterSink;

class Instance : public zel::IZelMediaConverter {
public:
    explicit Instance(Sink* sink) : mSink(sink) {}
    void reservedEntry0() override {}
    void reservedEntry1() override {}
    void reservedEntry2() override {}
    void reservedEntry3() override {}
    void reservedEntry4() override {}
    void reservedEntry5() override {}
    std::int32_t StartSingle(const char* source, const char* destination, std::uint32_t param1,
                             std::uint32_t param2) override {
        return StartMultiple(&source, 1, destination, param1, param2);
    }
    std::int32_t StartMultiple(const char* const* sources, std::uint64_t count,
                               const char* destination, std::uint32_t param1,
                               std::uint32_t param2) override;

private:
    Sink* mSink;
};

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    std::string losses;
    std::string ending = "-1"; // code, blank, reason
    std::string settings;
    bool acceptsLosses = false;
    bool stopping = false;
    int running = 0;
    std::vector<std::thread> threads;
    std::deque<Instance> instances; // which stay where they are
};

/// Gone with the library, unless its threads run on while the process exits.
struct StateOwner {
    State* const state = new State;

    ~StateOwner() {
        std::unique_lock lock(state->mutex);
        if (state->threads.empty()) {
            lock.unlock();
            delete state;
        }
    }
};

State& state() {
    static const StateOwner owner;
    return *owner.state;
}

std::filesystem::path utf8Path(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

using Command = std::pair<std::string, std::string>; // name, argument

std::vector<Command> readScript(const std::string& source) {
    std::vector<Command> commands;
    std::ifstream file(utf8Path(source));
    for (std::string line; std::getline(file, line);) {
        const std::size_t space = std::min(line.find(' '), line.size());
        commands.emplace_back(line.substr(0, space),
                              space < line.size() ? line.substr(space + 1) : "");
    }
    return commands;
}

void keepEnding(const std::string& ending) {
    const std::lock_guard lock(state().mutex);
    if (state().ending == "-1" && !state().stopping) {
        state().ending = ending;
    }
}

/// False when nothing more is to run.
bool run(Sink* sink, const Command& command, const std::string& destination) {
    const auto& [name, argument] = command;
    if (name == "progress") {
        const float percent = std::strtof(argument.c_str(), nullptr);
        if (percent >= 100.0F) {
            keepEnding("0");
        }
        sink->OnProgress(percent);
    } else if (name == "error") {
        keepEnding(argument + " as the script says");
        sink->OnError(std::atoi(argument.c_str()));
    } else if (name == "lose") {
        std::unique_lock lock(state().mutex);
        state().losses = argument;
        const bool isAccepted = state().acceptsLosses;
        lock.unlock();
        if (!isAccepted) {
            sink->OnError(20012);
        }
        return isAccepted;
    } else if (name == "write") {
        std::ofstream(utf8Path(destination)) << argument;
    } else if (name == "settings") {
        std::ofstream(utf8Path(destination)) << state().settings;
    } else if (name == "crash") {
        std::abort();
    } else if (name == "hold") {
        std::unique_lock lock(state().mutex);
        state().changed.wait(lock, [] { return state().stopping; });
    }
    return true;
}

std::int32_t start(Sink* sink, const std::string& source, const std::string& destination) {
    const std::vector<Command> commands = readScript(source);
    std::int32_t result = 0;
    if (!commands.empty() && commands.front().first == "result") {
        result = static_cast<std::int32_t>(std::stol(commands.front().second, nullptr, 0));
    }
    if ((static_cast<std::uint32_t>(result) & 0xF000U) != 0) {
        return result;
    }
    const std::lock_guard lock(state().mutex);
    state().losses.clear();
    state().ending = "-1";
    state().stopping = false;
    ++state().running;
    state().threads.emplace_back([sink, commands, destination] {
        for (const Command& command : commands) {
            if (!run(sink, command, destination)) {
                break;
            }
        }
        const std::lock_guard done(state().mutex);
        --state().running;
        state().changed.notify_all();
    });
    return result;
}

std::int32_t Instance::StartMultiple(const char* const* sources, std::uint64_t count,
                                     const char* destination, std::uint32_t param1,
                                     std::uint32_t param2) {
    const bool areThere = std::all_of(sources, sources + count, [](const char* source) {
        return std::filesystem::exists(utf8Path(source));
    });
    return areThere && param1 == 3 && param2 == 4 ? start(mSink, sources[0], destination) : -100;
}

/// The value of a variable, or else the scripted text.
[[maybe_unused]] std::string wordsOf(const char* variable, const std::string& scripted) {
    const char* const value = std::getenv(variable);
    return value != nullptr ? value : scripted;
}

[[maybe_unused]] std::int32_t handOver(const std::string& words, char* text,
                                       std::uint32_t capacity) {
    if (text != nullptr && capacity > 0) {
        text[words.copy(text, capacity - 1)] = '\0';
    }
    return words.empty() ? 0 : static_cast<std::int32_t>(words.size() + 1);
}

} // namespace

extern "C" {

#ifndef FAKE_NO_FACTORY
std::int32_t CreateMediaConverter(zel::IZelMediaConverter** instance, Sink* sink) {
#ifdef FAKE_STORES_NOTHING
    static_cast<void>(instance);
    static_cast<void>(sink);
#else
    const std::lock_guard lock(state().mutex);
    *instance = &state().instances.emplace_back(sink);
#endif
    return FAKE_FACTORY_RESULT;
}
#endif

#ifndef FAKE_NO_STOP
std::int32_t ZelConversionLosses(std::int32_t accepts, char* text, std::uint32_t capacity) {
    const std::lock_guard lock(state().mutex);
    state().acceptsLosses = accepts != 0;
    return handOver(wordsOf("FAKE_LOSSES", state().losses), text, capacity);
}

std::int32_t ZelConversionSetting(const char* name, const char* value) {
    state().settings.append(name).append("=").append(value).append(" ");
    return 0;
}

std::int32_t ZelConversionEnding(char* text, std::uint32_t capacity) {
    const std::lock_guard lock(state().mutex);
    const std::string words = wordsOf("FAKE_ENDING", state().ending);
    handOver(words.substr(std::min(words.find(' '), words.size() - 1) + 1), text, capacity);
    return std::atoi(words.c_str());
}

/// Ends the waiting of "hold"; returns 0 when no script runs any more.
std::int32_t ZelStopConversions(std::uint32_t timeoutMilliseconds) {
    std::unique_lock lock(state().mutex);
    state().stopping = true;
    state().changed.notify_all();
    if (!state().changed.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds),
                                  [] { return state().running == 0; })) {
        return 1;
    }
    std::vector<std::thread> finished = std::move(state().threads);
    state().threads.clear();
    lock.unlock();
    for (std::thread& thread : finished) {
        thread.join();
    }
    return 0;
}
#endif
}

// An engine for tests, loaded from disk as the real one is. It knows the program's interfaces only
// as tables of functions, the way another compiler lays them out, so that a slot out of place fails
// whichever compiler built it. The first source file is its script, one command in a line:
//
//   result N      what the start call returns (hexadecimal with 0x); a failure runs nothing
//   progress P    OnProgress(P) from the engine's thread; "nan" and "inf" are taken too
//   error N       OnError(N)
//   destroy       the sink's destructor entry
//   write TEXT    writes the destination
//   crash         ends the process from the engine's thread
//   hold          waits until a stop is asked for, and goes on even then
//
// What was called is recorded for FakeEngineCalls.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#ifndef FAKE_FACTORY_RESULT
#define FAKE_FACTORY_RESULT 0
#endif

namespace {

struct Sink;
struct SinkTable {
    void* (*destructorEntry)(Sink*, unsigned int);
    void (*onProgress)(Sink*, float);
    void (*onError)(Sink*, std::int32_t);
};
struct Sink {
    const SinkTable* table;
};

struct Instance;
struct InstanceTable {
    void* neverCalled[6];
    std::int32_t (*startSingle)(Instance*, const char*, const char*, std::uint32_t, std::uint32_t);
    std::int32_t (*startMultiple)(Instance*, const char* const*, std::uint64_t, const char*,
                                  std::uint32_t, std::uint32_t);
};
struct Instance {
    const InstanceTable* table;
    Sink* sink;
};

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    std::string calls;
    bool stopping = false;
    int running = 0;
    std::vector<std::thread> threads;
    std::vector<std::unique_ptr<Instance>> instances;
};

/// Gone with the library, unless its threads run on while the process exits.
struct StateOwner {
    State* state = new State;

    StateOwner() = default;
    ~StateOwner() {
        std::unique_lock lock(state->mutex);
        if (state->threads.empty()) {
            lock.unlock();
            delete state;
        }
    }
    StateOwner(const StateOwner&) = delete;
    StateOwner& operator=(const StateOwner&) = delete;
};

State& state() {
    static const StateOwner owner;
    return *owner.state;
}

std::filesystem::path utf8Path(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

struct Command {
    std::string name;
    std::string argument;
};

std::vector<Command> readScript(const std::string& source) {
    std::vector<Command> commands;
    std::ifstream file(utf8Path(source));
    for (std::string line; std::getline(file, line);) {
        const std::size_t space = line.find(' ');
        commands.push_back(
            {line.substr(0, space), space == std::string::npos ? "" : line.substr(space + 1)});
    }
    return commands;
}

void run(Sink* sink, const Command& command, const std::string& destination) {
    if (command.name == "progress") {
        sink->table->onProgress(sink, std::strtof(command.argument.c_str(), nullptr));
    } else if (command.name == "error") {
        sink->table->onError(sink, std::atoi(command.argument.c_str()));
    } else if (command.name == "destroy") {
        sink->table->destructorEntry(sink, 0);
    } else if (command.name == "write") {
        std::ofstream(utf8Path(destination)) << command.argument;
    } else if (command.name == "crash") {
        std::abort();
    } else if (command.name == "hold") {
        std::unique_lock lock(state().mutex);
        state().changed.wait(lock, [] { return state().stopping; });
    }
}

std::int32_t start(Instance* instance, const std::string& source, const std::string& destination) {
    std::vector<Command> commands = readScript(source);
    std::int32_t result = 0;
    if (!commands.empty() && commands.front().name == "result") {
        result = static_cast<std::int32_t>(std::stol(commands.front().argument, nullptr, 0));
    }
    if ((static_cast<std::uint32_t>(result) & 0xF000U) != 0) {
        return result;
    }
    const std::lock_guard lock(state().mutex);
    ++state().running;
    state().threads.emplace_back([sink = instance->sink, commands, destination] {
        for (const Command& command : commands) {
            run(sink, command, destination);
        }
        const std::lock_guard done(state().mutex);
        --state().running;
        state().changed.notify_all();
    });
    return result;
}

void record(const std::string& call) {
    const std::lock_guard lock(state().mutex);
    state().calls += call + "\n";
}

std::string parameters(const char* destination, std::uint32_t param1, std::uint32_t param2) {
    return std::string(" -> ") + destination + " " + std::to_string(param1) + " " +
           std::to_string(param2);
}

std::int32_t startSingle(Instance* instance, const char* source, const char* destination,
                         std::uint32_t param1, std::uint32_t param2) {
    record(std::string("single ") + source + parameters(destination, param1, param2));
    return start(instance, source, destination);
}

std::int32_t startMultiple(Instance* instance, const char* const* sources, std::uint64_t count,
                           const char* destination, std::uint32_t param1, std::uint32_t param2) {
    std::string call = "multiple " + std::to_string(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        call += std::string(" ") + sources[i];
    }
    record(call + parameters(destination, param1, param2));
    return start(instance, sources[0], destination);
}

constexpr InstanceTable kInstanceTable{{}, startSingle, startMultiple};

/// Returns 0 when no script runs any more; `stop` ends the waiting of "hold".
std::int32_t waitForScripts(bool stop, std::uint32_t milliseconds) {
    std::unique_lock lock(state().mutex);
    state().stopping = state().stopping || stop;
    state().changed.notify_all();
    if (!state().changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
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

} // namespace

extern "C" {

#ifndef FAKE_NO_FACTORY
std::int32_t CreateMediaConverter(Instance** instance, Sink* sink) {
    record("create");
#ifdef FAKE_STORES_NOTHING
    static_cast<void>(instance);
    static_cast<void>(sink);
#else
    const std::lock_guard lock(state().mutex);
    state().instances.push_back(std::make_unique<Instance>(Instance{&kInstanceTable, sink}));
    *instance = state().instances.back().get();
#endif
    return FAKE_FACTORY_RESULT;
}
#endif

#ifndef FAKE_NO_STOP
std::int32_t ZelStopConversions(std::uint32_t timeoutMilliseconds) {
    return waitForScripts(true, timeoutMilliseconds);
}
#endif

std::int32_t FakeEngineWait(std::uint32_t timeoutMilliseconds) {
    return waitForScripts(false, timeoutMilliseconds);
}

/// Valid until the next call of any function here.
const char* FakeEngineCalls() {
    const std::lock_guard lock(state().mutex);
    return state().calls.c_str();
}
}

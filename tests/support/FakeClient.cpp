// The engine's client library for tests. Like FakeEngine.cpp it knows the trace sink as a table.

#include <cstdint>
#include <string>

namespace {

struct Sink;
struct SinkTable {
    std::int32_t (*onTrace)(Sink*, std::uint32_t, const char*);
    void* (*destructorEntry)(Sink*, unsigned int);
};
struct Sink {
    const SinkTable* table;
};

Sink* currentSink = nullptr;
[[maybe_unused]] Sink* firstSink = nullptr;

std::string& calls() {
    static std::string recorded;
    return recorded;
}

} // namespace

extern "C" {

#ifndef FAKE_NO_EXPORTS
void ZelSetTraceSink(Sink* sink) {
    currentSink = sink;
    firstSink = firstSink == nullptr ? sink : firstSink;
    calls() += sink == nullptr ? "detached\n" : sink == firstSink ? "sink\n" : "another sink\n";
}

void ZelSetTraceMaxLevel(std::int32_t maxLevel) {
    calls() += "level " + std::to_string(maxLevel) + "\n";
}
#endif

std::int32_t FakeClientTrace(std::uint32_t level, const char* text) {
    currentSink->table->destructorEntry(currentSink, 0);
    return currentSink->table->onTrace(currentSink, level, text);
}

const char* FakeClientCalls() {
    return calls().c_str();
}
}

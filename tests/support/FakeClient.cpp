// The engine's client library for tests. Like FakeEngine.cpp it knows the trace sink as a table.

#include <cstdint>

namespace {

struct Sink;
struct SinkTable {
    std::int32_t (*onTrace)(Sink*, std::uint32_t, const char*);
    void* (*destructorEntry)(Sink*, unsigned int);
};
struct Sink {
    const SinkTable* table;
};

} // namespace

extern "C" {

void ZelSetTraceSink(Sink* sink) {
    if (sink != nullptr) {
        sink->table->destructorEntry(sink, 0);
        sink->table->onTrace(sink, 2, "The sink's table is as it should be");
    }
}

void ZelSetTraceMaxLevel(std::int32_t /*maxLevel*/) {
}
}

// The engine's client library for tests.

#include "zel/EngineContract.h"

extern "C" {

void ZelSetTraceSink(zel::IZelTraceSink* sink) {
    if (sink != nullptr) {
        sink->OnTrace(2, "A line for the log");
    }
}

void ZelSetTraceMaxLevel(std::int32_t /*maxLevel*/) {
}
}

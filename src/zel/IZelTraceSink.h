#pragma once

#include <cstdint>

namespace zel {

/// Receives the engine's trace lines, on any thread, several at once. Here the operation comes
/// before the destructor entry: slot 0 OnTrace, slot 1 destructor entry (see
/// IZelMediaConverterSink for why that is a placeholder).
class IZelTraceSink {
public:
    /// `level`: 0 error, 1 warning, 2 information, 3 debug, 4 trace. `text`: NUL-terminated UTF-8.
    virtual std::int32_t OnTrace(std::uint32_t level, const char* text) = 0;
    virtual void* destructorEntry(unsigned int /*flags*/) { return nullptr; }

protected:
    IZelTraceSink() = default;
    IZelTraceSink(const IZelTraceSink&) = default;
    IZelTraceSink& operator=(const IZelTraceSink&) = default;
    ~IZelTraceSink() = default;
};

} // namespace zel

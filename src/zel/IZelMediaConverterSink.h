#pragma once

#include <cstdint>

namespace zel {

/// Receives the engine's events, on threads of the engine's own. Implemented by the program.
///
/// Binary contract, slot by slot: 0 destructor entry, 1 OnProgress, 2 OnError. The engine may be
/// built by another compiler. C++ ABIs give a virtual destructor one slot (MSVC) or two (Itanium,
/// which GCC and MinGW use), so the destructor entry is a placeholder of one slot and no virtual
/// destructor is ever declared in these interfaces.
class IZelMediaConverterSink {
public:
    /// Slot 0, shaped as MSVC's deleting destructor. The engine never owns a sink: does nothing.
    virtual void* destructorEntry(unsigned int /*flags*/) { return nullptr; }
    /// Percent, 0 to 100; 100 or more means that the destination is complete.
    virtual void OnProgress(float percent) = 0;
    /// The engine's own error number.
    virtual void OnError(std::int32_t code) = 0;

protected:
    IZelMediaConverterSink() = default;
    IZelMediaConverterSink(const IZelMediaConverterSink&) = default;
    IZelMediaConverterSink& operator=(const IZelMediaConverterSink&) = default;
    ~IZelMediaConverterSink() = default;
};

} // namespace zel

#pragma once

#include <cstdint>

namespace zel {

/// A converter instance of the engine. The program calls entries 6 and 7 only and never releases
/// the instance. Slots are declared one by one, see IZelMediaConverterSink.
class IZelMediaConverter {
public:
    virtual void reservedEntry0() = 0;
    virtual void reservedEntry1() = 0;
    virtual void reservedEntry2() = 0;
    virtual void reservedEntry3() = 0;
    virtual void reservedEntry4() = 0;
    virtual void reservedEntry5() = 0;
    /// Slot 6. Texts are NUL-terminated UTF-8 paths, read before the call returns.
    virtual std::int32_t StartSingle(const char* source, const char* destination,
                                     std::uint32_t engineParam1, std::uint32_t engineParam2) = 0;
    /// Slot 7. `count` sources, parts of one recording in order.
    virtual std::int32_t StartMultiple(const char* const* sources, std::uint64_t count,
                                       const char* destination, std::uint32_t engineParam1,
                                       std::uint32_t engineParam2) = 0;

protected:
    IZelMediaConverter() = default;
    IZelMediaConverter(const IZelMediaConverter&) = default;
    IZelMediaConverter& operator=(const IZelMediaConverter&) = default;
    ~IZelMediaConverter() = default;
};

} // namespace zel

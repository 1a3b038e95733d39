#pragma once

#include "zel/IZelTraceSink.h"

#include <cstdint>

namespace recordconverter {

/// Writes the engine's trace lines into the log under the file name "ZEL". Stateless: any thread.
class ConverterTraceSink final : public zel::IZelTraceSink {
public:
    std::int32_t OnTrace(std::uint32_t level, const char* text) override;
};

} // namespace recordconverter

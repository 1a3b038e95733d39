#pragma once

#include <cstdint>
#include <string>

namespace recordconverter {

/// Observes a conversion session. Every operation runs on a thread of the engine's, apart from
/// onConvertStarted, which runs inside startConvert; progress may overtake it. `destination` is the
/// UTF-8 path of the file being written.
class IMediaConverterCallback {
public:
    virtual ~IMediaConverterCallback() = default;
    /// The engine accepted the job. A start that fails is in the log only.
    virtual void onConvertStarted(const std::string& destination) = 0;
    /// `percent` as the engine gives it, nominally 0 to 100; 100 or more means done.
    virtual void onConvertProgress(float percent, const std::string& destination) = 0;
    /// `code` is the engine's own.
    virtual void onConvertError(std::int32_t code, const std::string& destination) = 0;
};

} // namespace recordconverter

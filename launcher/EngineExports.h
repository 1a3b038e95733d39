#pragma once

#include "platform/Library.h"
#include "zel/EngineContract.h"

#include <cstdint>
#include <optional>
#include <string>

namespace launcher {

/// What the engine's library may offer beside its factory. The library stays loaded for the life of
/// the process. Any thread.
class EngineExports {
public:
    explicit EngineExports(const std::string& engineFolder);

    /// Conversions that start from now on may complete although content is lost.
    void acceptLosses() const;
    /// What the conversion that ended last lost; empty when nothing, as far as the engine tells.
    std::string losses() const;

    /// See zel::ConversionSettingFunction. False from an engine that offers no such choice.
    bool choose(const char* name, const char* value) const;

    struct Ending {
        std::int32_t code = 0; ///< see zel::ConversionEndingFunction
        std::string reason;
    };
    /// Nothing from an engine that does not tell.
    std::optional<Ending> ending() const;

    /// True when no conversion is left after that time.
    bool stop(std::uint32_t timeoutMilliseconds) const;

private:
    zel::ConversionLossesFunction mLosses = nullptr;
    zel::ConversionEndingFunction mEnding = nullptr;
    zel::ConversionSettingFunction mSetting = nullptr;
    zel::StopConversionsFunction mStop = nullptr;
};

} // namespace launcher

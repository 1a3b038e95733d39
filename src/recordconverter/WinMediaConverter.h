#pragma once

#include "platform/Library.h"
#include "recordconverter/ConverterLog.h"
#include "recordconverter/MediaConverter.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace recordconverter {

/// Binds a session to the engine library in the engine folder. Destroying it unloads the library,
/// which nothing guards against an engine that still reports: stop the engine first, or keep the
/// session until the process ends.
class WinMediaConverter : public MediaConverter {
public:
    WinMediaConverter(std::string engineFolder, std::vector<std::string> sources,
                      std::string destination, std::shared_ptr<ConverterLog> converterLog);
    WinMediaConverter(const WinMediaConverter&) = delete;
    WinMediaConverter& operator=(const WinMediaConverter&) = delete;
    ~WinMediaConverter() override;

    /// Also attaches the engine's trace, whatever the outcome of the binding.
    void loadEngine() override;

    bool isBound() const { return factory() != nullptr; }

    /// Asks the engine to stop every conversion and waits for its threads. True when none is left:
    /// it then reports nothing more, and the session may be destroyed. False when the engine has no
    /// such export, or is not done in time.
    bool stopConversions(std::uint32_t timeoutMilliseconds);

private:
    void bindEngine();

    tarn::platform::LibraryHandle mModule = nullptr;
    std::shared_ptr<ConverterLog> mConverterLog;
};

} // namespace recordconverter

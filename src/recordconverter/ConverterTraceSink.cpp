#include "recordconverter/ConverterTraceSink.h"

#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "threading/Assertion.h"

#include <string>

namespace recordconverter {
namespace {

using tarn::RootLoggerLevel::Level;

Level mapLevel(std::uint32_t engineLevel) {
    switch (engineLevel) {
        case 0:
            return tarn::RootLoggerLevel::Error;
        case 1:
            return tarn::RootLoggerLevel::Warn;
        case 2:
            return tarn::RootLoggerLevel::Info;
        case 3:
            return tarn::RootLoggerLevel::Debug;
        case 4:
            return tarn::RootLoggerLevel::Trace;
        default:
            tarn::assertionFailed(std::string(tarn::sourceName(__FILE__)), __LINE__, __func__,
                                  "false", "Could not map ZEL log level to tarn log level");
            return tarn::RootLoggerLevel::Unknown;
    }
}

} // namespace

std::int32_t ConverterTraceSink::OnTrace(std::uint32_t level, const char* text) {
    try {
        const Level mapped = mapLevel(level);
        tarn::RootLogger::log(text != nullptr ? text : "", mapped, 0, "ZEL", "", "");
    } catch (...) {
        // Nothing may be thrown into the engine. What is left of the line cannot be logged either:
        // only a want of memory or an assertion handler gets here.
        return 0;
    }
    return 0;
}

} // namespace recordconverter

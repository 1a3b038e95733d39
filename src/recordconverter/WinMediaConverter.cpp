#include "recordconverter/WinMediaConverter.h"

#include "loader/LibraryLoader.h"
#include "log/LogCall.h"
#include "platform/Text.h"
#include "recordconverter/UnloadLibrary.h"

#include <utility>

namespace recordconverter {
namespace {

using tarn::RootLoggerLevel::Error;

} // namespace

WinMediaConverter::WinMediaConverter(std::string engineFolder, std::vector<std::string> sources,
                                     std::string destination,
                                     std::shared_ptr<ConverterLog> converterLog)
    : MediaConverter(std::move(engineFolder), std::move(sources), std::move(destination)),
      mConverterLog(std::move(converterLog)) {
}

WinMediaConverter::~WinMediaConverter() {
    if (mModule != nullptr) {
        unloadAndLog(mModule);
    }
}

void WinMediaConverter::loadEngine() {
    bindEngine();
    if (mConverterLog != nullptr) {
        mConverterLog->attach(engineFolder());
    }
}

void WinMediaConverter::bindEngine() {
    const std::string name = tarn::platform::libraryFileName("mediaconverter");
    if (mModule == nullptr) {
        mModule = tarn::loader::loadLibrary(tarn::platform::toWide(name).c_str(),
                                            tarn::platform::toWide(engineFolder()));
    }
    if (mModule == nullptr) {
        TARN_LOG(Error, "Can not load " << name);
        return;
    }
    void* const factory = tarn::platform::findSymbol(mModule, "CreateMediaConverter");
    if (factory == nullptr) {
        const std::uint32_t error = tarn::platform::lastError();
        TARN_LOG(Error,
                 "Can not open CreateMediaConverter in " << name << ", errorCode: " << error);
        return;
    }
    setFactory(reinterpret_cast<zel::CreateMediaConverterFunction>(factory));
}

bool WinMediaConverter::stopConversions(std::uint32_t timeoutMilliseconds) {
    if (mModule == nullptr) {
        return true;
    }
    const auto stop = reinterpret_cast<zel::StopConversionsFunction>(
        tarn::platform::findSymbol(mModule, "ZelStopConversions"));
    return stop != nullptr && stop(timeoutMilliseconds) == 0;
}

} // namespace recordconverter

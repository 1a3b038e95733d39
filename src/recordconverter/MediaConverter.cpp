#include "recordconverter/MediaConverter.h"

#include "log/LogCall.h"
#include "utils/FileUtils.h"

#include <utility>

namespace recordconverter {
namespace {

using tarn::RootLoggerLevel::Debug;
using tarn::RootLoggerLevel::Error;

constexpr float kDonePercent = 100.0F;

std::int32_t startEngine(zel::IZelMediaConverter& engine, const std::vector<std::string>& sources,
                         const std::string& destination, std::uint32_t param1,
                         std::uint32_t param2) {
    if (sources.size() == 1) {
        return engine.StartSingle(sources.front().c_str(), destination.c_str(), param1, param2);
    }
    std::vector<const char*> texts;
    texts.reserve(sources.size());
    for (const std::string& source : sources) {
        texts.push_back(source.c_str());
    }
    return engine.StartMultiple(texts.data(), texts.size(), destination.c_str(), param1, param2);
}

} // namespace

MediaConverter::MediaConverter(std::string engineFolder, std::vector<std::string> sources,
                               std::string destination)
    : mEngineFolder(std::move(engineFolder)),
      mSources(std::move(sources)),
      mDestination(std::move(destination)) {
}

bool MediaConverter::createInstance() {
    mInstance = nullptr;
    return mFactory != nullptr && !zel::isFailure(mFactory(&mInstance, this)) &&
           mInstance != nullptr;
}

void MediaConverter::startConvert(const std::vector<std::string>& sources,
                                  const std::string& destination, std::uint32_t engineParam1,
                                  std::uint32_t engineParam2) {
    if (!createInstance()) {
        TARN_LOG(Error, "Failed to create media converter instance.");
        return;
    }
    TARN_LOG(Debug, "media converter instance is created successfully.");

    const std::int32_t result =
        sources.empty() ? zel::kZelSrcFileNumberError
                        : startEngine(*mInstance, sources, destination, engineParam1, engineParam2);
    if (!zel::isFailure(result)) {
        notifyGuarded([&](auto& observer) { observer.onConvertStarted(destination); });
    } else if (result == zel::kZelSrcFileNumberError) {
        TARN_LOG(Error, "Failed to start media convert: src file number error");
    } else {
        TARN_LOG(Error, "Failed to start media convert.");
    }
}

void MediaConverter::OnProgress(float percent) {
    notifyGuarded([&](auto& observer) { observer.onConvertProgress(percent, mDestination); });
    if (percent >= kDonePercent) {
        deleteSources();
    }
}

void MediaConverter::deleteSources() {
    try {
        const tarn::FileUtils files;
        for (const std::string& source : mSources) {
            files.remove(source);
        }
    } catch (...) {
        TARN_LOG(Error, "The source files could not be deleted.");
    }
}

void MediaConverter::OnError(std::int32_t code) {
    notifyGuarded([&](auto& observer) { observer.onConvertError(code, mDestination); });
}

/// The engine calls from a thread and a runtime of its own: no exception may get back into it, and
/// one observer's failure is not the next one's.
template <typename Call>
void MediaConverter::notifyGuarded(const Call& call) {
    try {
        notifyObservers([&](IMediaConverterCallback& observer) {
            try {
                call(observer);
            } catch (...) {
                TARN_LOG(Error, "A conversion observer failed.");
            }
        });
    } catch (...) {
        TARN_LOG(Error, "The conversion observers could not be called.");
    }
}

} // namespace recordconverter

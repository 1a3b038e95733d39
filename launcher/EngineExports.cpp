#include "launcher/EngineExports.h"

#include "loader/LibraryLoader.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

#include <array>

namespace launcher {
namespace {

/// Far more than a sentence takes.
using Sentence = std::array<char, 4096>;

} // namespace

EngineExports::EngineExports(const std::string& engineFolder) {
    const std::string path =
        tarn::FileUtils().joinPath(engineFolder, tarn::platform::libraryFileName("mediaconverter"));
    auto* const library = tarn::loader::safeLoadLibrary(tarn::platform::toWide(path));
    if (library != nullptr) {
        mLosses = reinterpret_cast<zel::ConversionLossesFunction>(
            tarn::platform::findSymbol(library, "ZelConversionLosses"));
        mEnding = reinterpret_cast<zel::ConversionEndingFunction>(
            tarn::platform::findSymbol(library, "ZelConversionEnding"));
        mSetting = reinterpret_cast<zel::ConversionSettingFunction>(
            tarn::platform::findSymbol(library, "ZelConversionSetting"));
        mStop = reinterpret_cast<zel::StopConversionsFunction>(
            tarn::platform::findSymbol(library, "ZelStopConversions"));
    }
}

void EngineExports::acceptLosses() const {
    if (mLosses != nullptr) {
        mLosses(1, nullptr, 0);
    }
}

std::string EngineExports::losses() const {
    Sentence text{};
    if (mLosses == nullptr ||
        mLosses(1, text.data(), static_cast<std::uint32_t>(text.size())) == 0) {
        return {};
    }
    return text.front() != '\0' ? text.data() : "content of the recording is missing";
}

bool EngineExports::choose(const char* name, const char* value) const {
    return mSetting != nullptr && !zel::isFailure(mSetting(name, value));
}

std::optional<EngineExports::Ending> EngineExports::ending() const {
    if (mEnding == nullptr) {
        return std::nullopt;
    }
    Sentence text{};
    const std::int32_t code = mEnding(text.data(), static_cast<std::uint32_t>(text.size()));
    return Ending{code, text.data()};
}

bool EngineExports::stop(std::uint32_t timeoutMilliseconds) const {
    return mStop != nullptr && mStop(timeoutMilliseconds) == zel::kZelSuccess;
}

} // namespace launcher

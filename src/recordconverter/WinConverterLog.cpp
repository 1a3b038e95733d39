#include "recordconverter/WinConverterLog.h"

#include "loader/LibraryLoader.h"
#include "log/LogCall.h"
#include "logging/RootLogger.h"
#include "logging/file/LogSetup.h"
#include "platform/Text.h"
#include "recordconverter/UnloadLibrary.h"

#include <utility>

namespace recordconverter {
namespace {

using tarn::RootLoggerLevel::Warn;

constexpr std::int32_t kTraceMaxLevel = 5;

} // namespace

WinConverterLog::~WinConverterLog() {
    WinConverterLog::detach();
    if (mClient != nullptr) {
        unloadAndLog(mClient);
    }
}

void WinConverterLog::initialize(int /*argc*/, wchar_t** /*argv*/) {
    tarn::setUpLogging();
    tarn::blockListPersonalData();
    // Lines are dropped until the worker has registered the sink: wait for it, so that what the
    // start-up says next is in the file.
    tarn::RootLogger::getInstance().flush();
}

void WinConverterLog::attach(const std::string& engineFolder) {
    if (mTraceSink == nullptr) {
        mTraceSink = std::make_shared<ConverterTraceSink>();
    }
    if (mClient == nullptr) {
        const std::string name = tarn::platform::libraryFileName("zelclient");
        mClient = tarn::loader::loadLibrary(tarn::platform::toWide(name).c_str(),
                                            tarn::platform::toWide(engineFolder));
    }
    if (mClient != nullptr) {
        findSetters();
    }
    if (mTraceSink != nullptr && mSetSink != nullptr) {
        mSetSink(mTraceSink.get());
    } else {
        TARN_LOG(Warn, "ZelSetTraceSink setting error, sink:"
                           << static_cast<const void*>(mTraceSink.get())
                           << ", sink setter:" << reinterpret_cast<const void*>(mSetSink));
    }
    if (mSetMaxLevel != nullptr) {
        mSetMaxLevel(kTraceMaxLevel);
    } else {
        TARN_LOG(Warn, "ZelSetTraceMaxLevel setting error");
    }
}

void WinConverterLog::detach() {
    if (const auto setSink = std::exchange(mSetSink, nullptr)) {
        setSink(nullptr);
    }
}

void WinConverterLog::findSetters() {
    if (mSetSink == nullptr) {
        mSetSink = reinterpret_cast<zel::SetTraceSinkFunction>(
            tarn::platform::findSymbol(mClient, "ZelSetTraceSink"));
    }
    if (mSetMaxLevel == nullptr) {
        mSetMaxLevel = reinterpret_cast<zel::SetTraceMaxLevelFunction>(
            tarn::platform::findSymbol(mClient, "ZelSetTraceMaxLevel"));
    }
}

void WinConverterLog::installQtMessageHandler() {
    if (mInstallQtHandler != nullptr) {
        mInstallQtHandler();
    }
}

} // namespace recordconverter

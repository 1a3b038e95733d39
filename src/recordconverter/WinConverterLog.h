#pragma once

#include "platform/Library.h"
#include "recordconverter/ConverterLog.h"
#include "recordconverter/ConverterTraceSink.h"
#include "zel/EngineContract.h"

#include <memory>
#include <string>

namespace recordconverter {

/// Hands the engine's client library a trace sink of ours, and detaches it when destroyed.
class WinConverterLog : public ConverterLog {
public:
    using QtHandlerInstaller = void (*)();

    /// This folder knows no Qt: whoever has it passes the function that installs the handler.
    explicit WinConverterLog(QtHandlerInstaller installer = nullptr)
        : mInstallQtHandler(installer) {}
    WinConverterLog(const WinConverterLog&) = delete;
    WinConverterLog& operator=(const WinConverterLog&) = delete;
    ~WinConverterLog() override;

    void initialize(int argc, wchar_t** argv) override;
    /// A missing client library costs two warnings and no failure.
    void attach(const std::string& engineFolder) override;
    void installQtMessageHandler() override;
    void detach() override;

private:
    void findSetters();

    std::shared_ptr<ConverterTraceSink> mTraceSink;
    tarn::platform::LibraryHandle mClient = nullptr;
    zel::SetTraceSinkFunction mSetSink = nullptr;
    zel::SetTraceMaxLevelFunction mSetMaxLevel = nullptr;
    QtHandlerInstaller mInstallQtHandler = nullptr;
};

} // namespace recordconverter

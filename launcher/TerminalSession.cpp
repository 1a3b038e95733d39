#include "launcher/TerminalSession.h"

#include "logging/LogCall.h"

#include <utility>

namespace launcher {

using Result = ConversionState::Result;

TerminalSession::TerminalSession(std::string engineFolder, std::vector<std::string> sourcesToDelete,
                                 std::string destination,
                                 std::shared_ptr<recordconverter::ConverterLog> converterLog,
                                 std::shared_ptr<ConversionState> state)
    : WinMediaConverter(std::move(engineFolder), std::move(sourcesToDelete), destination,
                        std::move(converterLog)),
      mDestination(std::move(destination)),
      mOlderDestination(tarn::platform::fileDetails(mDestination)),
      mState(std::move(state)) {
}

void TerminalSession::OnProgress(float percent) {
    if (!(percent >= 100.0F)) {
        WinMediaConverter::OnProgress(percent);
        return;
    }
    if (!mState->claimEnding()) {
        return;
    }
    if (!destinationIsWritten()) {
        TARN_LOG(tarn::RootLoggerLevel::Error,
                 "The engine reported the end without a destination: " << mDestination);
        mState->settle({Result::NothingWritten});
        return;
    }
    WinMediaConverter::OnProgress(percent);
    mState->settle({Result::Complete});
}

bool TerminalSession::destinationIsWritten() const {
    const auto now = tarn::platform::fileDetails(mDestination);
    return now && !now->isFolder && now->size > 0 &&
           (!mOlderDestination || now->size != mOlderDestination->size ||
            now->modified != mOlderDestination->modified);
}

void TerminalSession::OnError(std::int32_t code) {
    if (mState->claimEnding()) {
        WinMediaConverter::OnError(code);
        mState->settle({Result::Error, code});
    }
}

} // namespace launcher

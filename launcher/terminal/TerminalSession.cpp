#include "launcher/terminal/TerminalSession.h"

#include <utility>

namespace launcher {

using Result = ConversionState::Result;

TerminalSession::TerminalSession(std::string engineFolder, std::string destination,
                                 std::shared_ptr<recordconverter::ConverterLog> converterLog,
                                 std::shared_ptr<ConversionState> state)
    // What the session does not know it cannot delete.
    : WinMediaConverter(std::move(engineFolder), {}, std::move(destination),
                        std::move(converterLog)),
      mState(std::move(state)) {
}

void TerminalSession::OnProgress(float percent) {
    if (!(percent >= 100.0F)) {
        WinMediaConverter::OnProgress(percent);
    } else if (mState->claimEnding()) {
        WinMediaConverter::OnProgress(percent);
        mState->settle({Result::Complete});
    }
}

void TerminalSession::OnError(std::int32_t code) {
    if (mState->claimEnding()) {
        WinMediaConverter::OnError(code);
        mState->settle({Result::Error, code});
    }
}

} // namespace launcher

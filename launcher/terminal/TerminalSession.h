#pragma once

#include "launcher/terminal/ConversionState.h"
#include "recordconverter/WinMediaConverter.h"

#include <memory>

namespace launcher {

/// A session that deletes nothing and says when an ending has been dealt with to its last step. It
/// lets only the first ending through, and none once the caller has given the conversion up.
class TerminalSession : public recordconverter::WinMediaConverter {
public:
    TerminalSession(std::string engineFolder, std::string destination,
                    std::shared_ptr<recordconverter::ConverterLog> converterLog,
                    std::shared_ptr<ConversionState> state);

    void OnProgress(float percent) override;
    void OnError(std::int32_t code) override;

private:
    std::shared_ptr<ConversionState> mState;
};

} // namespace launcher

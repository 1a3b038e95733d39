#pragma once

#include "launcher/ConversionState.h"
#include "platform/Files.h"
#include "recordconverter/WinMediaConverter.h"

#include <memory>
#include <optional>

namespace launcher {

/// A session that says when an ending has been dealt with to its last step. It lets only the first
/// ending through, and none once the caller has given the conversion up, so that nothing deletes
/// the sources after that; nor does it when there is no destination to show for them.
class TerminalSession : public recordconverter::WinMediaConverter {
public:
    TerminalSession(std::string engineFolder, std::vector<std::string> sourcesToDelete,
                    std::string destination,
                    std::shared_ptr<recordconverter::ConverterLog> converterLog,
                    std::shared_ptr<ConversionState> state);

    void OnProgress(float percent) override;
    void OnError(std::int32_t code) override;

private:
    bool destinationIsWritten() const;

    std::string mDestination;
    std::optional<tarn::platform::FileDetails> mOlderDestination;
    std::shared_ptr<ConversionState> mState;
};

} // namespace launcher

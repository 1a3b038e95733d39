#pragma once

#include "engine/media/Muxer.h"
#include "engine/support/ConversionSettings.h"
#include "engine/support/ErrorCode.h"
#include "engine/support/Losses.h"
#include "engine/support/Progress.h"
#include "engine/support/SinkGate.h"
#include "engine/support/StopFlag.h"
#include "engine/tracks/TrackPlan.h"
#include "zel/IZelMediaConverterSink.h"

#include <string>
#include <vector>

namespace zelcore {

using ConverterSinkGate = SinkGate<zel::IZelMediaConverterSink>;

/// One conversion, from the sources' names to the destination or an error.
class ConversionJob {
public:
    ConversionJob(std::vector<std::string> sources, std::string destination,
                  zel::IZelMediaConverterSink* sink);

    /// On the conversion's own thread. Reports one 100 or one error, then nothing more; a job that
    /// was stopped reports neither.
    void run() noexcept;
    void stop() { mStop.raise(); }
    ConverterSinkGate& sink() { return mSink; }

private:
    void convert();
    /// Everything up to the finished file; throws NotCopyable when another plan is needed.
    WrittenFile write(const Sources& sources, const std::vector<TrackPlan>& plans,
                      const Cover& cover, DestinationFile& destination, Progress& progress);
    /// Throws when content is missing and the caller has not accepted that.
    void settleLosses();
    void report(ErrorCode code, const char* why) noexcept;

    const std::vector<std::string> mSources;
    const std::string mDestination;
    StopFlag mStop;
    const bool mAcceptsLosses;
    const ConversionSettings mSettings;
    Losses mLosses;
    ConverterSinkGate mSink;
};

} // namespace zelcore

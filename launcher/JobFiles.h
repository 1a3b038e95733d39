#pragma once

#include "launcher/Preflight.h"
#include "platform/FileIdentity.h"

#include <optional>
#include <string>
#include <vector>

namespace launcher {

/// The files of a job as they were before its start, to be compared with what is there at its end.
class JobFiles {
public:
    explicit JobFiles(const Job& job);

    /// Bytes of the sources together.
    std::uint64_t totalSize() const;

    /// Something has the destination's name that did not have it before, or not in this state.
    bool hasDestinationChanged() const;
    /// The same, and it is a file that holds something.
    bool isDestinationWritten() const;

    /// Removes the sources; one that is not any more what it was before the start stays, as all do
    /// without a written destination. Returns those that are left, each in quotes with the reason.
    std::vector<std::string> removeSources() const;

private:
    struct Source {
        std::string path;
        std::optional<tarn::platform::FileIdentity> before;
    };

    std::string mDestination;
    std::optional<tarn::platform::FileIdentity> mOlderDestination;
    std::vector<Source> mSources;
};

} // namespace launcher

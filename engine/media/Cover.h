#pragma once

#include "engine/support/AvHandles.h"

#include <optional>

namespace zelcore {

/// The picture that stands for a whole recording, as its container has it beside the tracks.
class Cover {
public:
    /// The first one in an open source that MP4 has a place for: JPEG, PNG, BMP. Tells its
    /// stream.
    std::optional<int> takeFrom(const AVFormatContext& source);
    bool isEmpty() const { return mPicture == nullptr; }
    const AVCodecParameters& parameters() const { return *mParameters; }
    const AVPacket& picture() const { return *mPicture; }

private:
    ParametersPtr mParameters;
    PacketPtr mPicture;
};

bool isCover(const AVStream& stream);

} // namespace zelcore

#pragma once

#include "engine/core/AvHandles.h"

namespace zelcore {

/// Brings decoded pictures to the encoder's size and to 8-bit 4:2:0, which every player takes.
/// A picture that is one column or row short of an even size gets its last one twice, so nothing is
/// cut or blurred; any other size is scaled, keeping its proportions, onto black.
class PictureFitter {
public:
    PictureFitter(int width, int height);

    /// The picture itself when it fits as it is, else one of the fitter's own. Valid until the
    /// next call.
    AVFrame& fit(AVFrame& picture);

private:
    void scaleOnto(const AVFrame& picture, int left, int top, int width, int height);
    void repeatEdges(int width, int height);
    void blacken();

    int mWidth;
    int mHeight;
    FramePtr mFitted;
    ScalerPtr mScaler;
};

} // namespace zelcore

#pragma once

#include "engine/tracks/Canvas.h"
#include "engine/tracks/PictureScaler.h"

namespace zelcore {

/// Brings decoded pictures to the canvas, in 8-bit 4:2:0, which every player takes. A picture that
/// is one column or row short of an even size gets its last one twice, so nothing is cut or
/// blurred; any other shape is turned and scaled, keeping its proportions, onto black.
class PictureFitter {
public:
    explicit PictureFitter(const Canvas& canvas) : mCanvas(canvas) {}

    /// The pictures to come are this stream's, which says how they lie and what shape pixels have.
    void beginPart(const AVStream& stream);
    /// The picture itself when it fits as it is, else one of the fitter's own. Valid until the
    /// next call.
    AVFrame& fit(AVFrame& picture);

private:
    struct Place {
        int left = 0;
        int top = 0;
        int width = 0;
        int height = 0;
        bool isExact = false; ///< unscaled from the corner on, at most one row or column short
    };
    Place placeOf(const AVFrame& picture) const;
    PictureKind kindOf(const AVFrame& picture) const;
    PictureKind canvasKind(const PictureKind& from) const;
    void scaleOnto(const AVFrame& picture, const PictureKind& from, const Place& place);
    void scale(const AVFrame& picture, PictureKind from, const AVFrame& target, PictureKind to);
    void turnOnto(const AVFrame& lying, const Place& place);
    void repeatEdges(const Place& place);
    void blacken();

    Canvas mCanvas;
    Orientation mOrientation; ///< by which the part's pictures are turned
    AVRational mContainersAspect{0, 1};
    AVColorSpace mContainersSpace = AVCOL_SPC_UNSPECIFIED;
    AVColorRange mContainersRange = AVCOL_RANGE_UNSPECIFIED;
    FramePtr mFitted;
    PictureScaler mScaler;
};

} // namespace zelcore

/// \file
/// A picture as a dewarper decides it, and questions about its points.
#pragma once

#include "dewarp/control/Control.h"
#include "dewarp/control/Decision.h"
#include "dewarp/mapping/PointMap.h"

#include <cmath>
#include <string>

struct SPointSetup
{
    EViewType eView = VIEW_FISHEYE;
    EMountType eMount = MOUNT_CEILING;
    int nLens = 0;
    int nFrameWidth = 0;
    int nFrameHeight = 0;
    int nWidth = 0;
    int nHeight = 0;
    SPTZ sPTZ; ///< zoom 0: the view's own angles
    int nRotation = 0;
    bool bFlipHorizontal = false;
    bool bFlipVertical = false;
    float fEyeDistance = 0.0f;
    float fMountTilt = 0.0f;
    bool bTopDown = true;

    std::string Words() const
    {
        return "view " + std::to_string(eView) + ", mount " + std::to_string(eMount) + ", lens " +
               std::to_string(nLens) + ", frame " + std::to_string(nFrameWidth) + " x " +
               std::to_string(nFrameHeight) + ", picture " + std::to_string(nWidth) + " x " +
               std::to_string(nHeight) + ", at " + std::to_string(sPTZ.fPan) + " " +
               std::to_string(sPTZ.fTilt) + " " + std::to_string(sPTZ.fZoom) + ", turned " +
               std::to_string(nRotation) + ", flips " + std::to_string(bFlipHorizontal) +
               std::to_string(bFlipVertical) + ", eye " + std::to_string(fEyeDistance) + ", mount tilt " +
               std::to_string(fMountTilt);
    }
};

class CPointScene
{
public:
    CPointScene() = default;
    explicit CPointScene(const SPointSetup& rSetup) { Show(rSetup); }

    void Show(const SPointSetup& s)
    {
        CReport oReport("PointScene");
        CControl oControl(oReport);
        oControl.eRequestedView = s.eView;
        oControl.eRequestedMount = s.eMount;
        oControl.eRequestedLens = static_cast<ELensType>(s.nLens);
        oControl.nRotation = s.nRotation;
        oControl.SetFrame(s.nFrameWidth, s.nFrameHeight, s.nFrameWidth, true);
        oControl.SetMountTilt(s.fMountTilt);
        oControl.SetEyeDistance(s.fEyeDistance);
        oControl.ApplyRequests();
        // A new view brings its own angles; ours come after it.
        if (s.sPTZ.fZoom > 0.0f) {
            oControl.AbsolutePTZ(s.sPTZ.fPan, s.sPTZ.fTilt, s.sPTZ.fZoom);
            oControl.ApplyRequests();
        }
        DecideView(oControl, {s.nWidth, s.nHeight, s.bTopDown}, sDecision);
        sDecision.sPicture.bFlipHorizontal = s.bFlipHorizontal;
        sDecision.sPicture.bFlipVertical = s.bFlipVertical;
        oMap.SetDrawn(sDecision, true);
    }

    bool ToFrame(const SPointD& rPoint, SPointD& rResult)
    {
        bool bValid = false;
        return oMap.ViewToFrame(&rPoint, &rResult, &bValid, 1) == 1 && bValid;
    }
    bool ToView(const SPointD& rPoint, SPointD& rResult)
    {
        bool bValid = false;
        return oMap.FrameToView(&rPoint, &rResult, &bValid, 1) == 1 && bValid;
    }

    SFrameDecision sDecision;
    CPointMap oMap;
};

inline double Distance(const SPointD& rA, const SPointD& rB)
{
    return std::hypot(rA.x - rB.x, rA.y - rB.y);
}

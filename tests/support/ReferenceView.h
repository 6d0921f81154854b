/// \file
/// What every view means, pixel by pixel, in double precision: where in the input picture, and in which
/// direction of the camera, a pixel of the result looks. Nothing of the library's geometry is used.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "tests/support/LensCurve.h"
#include "tests/support/TestScene.h"

/// Angles are values in force (inside the view's limits).
struct SReferenceSetup
{
    EViewType eView = VIEW_FISHEYE;
    EMountType eMount = MOUNT_CEILING;
    int nLensType = 0;
    int nImageWidth = 0;
    int nImageHeight = 0;
    int nTargetWidth = 0;
    int nTargetHeight = 0;
    double fPan = 0.0;
    double fTilt = 0.0;
    double fZoom = 180.0;
    double fMountTilt = 0.0;
    bool bStrict = true;
    int nRotation = 0; ///< flat fisheye views only
    bool bFlipHorizontal = false;
    bool bFlipVertical = false;
    double fEyeDistance = 0.0; ///< virtual camera only
};

struct SReferencePixel
{
    bool bDrawn = false;
    double fU = 0.0; ///< texture coordinate in the input, (0, 0) its top left corner
    double fV = 0.0;
    FVector aRay = {0.0, 0.0, 1.0}; ///< direction in the camera
};

/// One view, ready to be asked for pixels.
class CReferenceView
{
public:
    explicit CReferenceView(const SReferenceSetup& sSetup);

    /// Place in the result, in pixels from its top left corner; the first pixel's middle is (0.5, 0.5).
    SReferencePixel At(double x, double y) const;
    /// Texture coordinate at which the lens truly shows a direction of the camera.
    void TrueTexCoord(const FVector& aRay, double& fU, double& fV) const;
    const SReferenceSetup& Setup() const { return m_sSetup; }

    /// The view of a scene, drawn without any mesh.
    STestImage Render(const FScene& fScene, int nSamples = 2) const;
    /// The view of an input picture, sampled without any mesh; bilinear or nearest.
    STestImage Render(const STestImage& sInput, bool bLinear) const;

private:
    SReferencePixel Fisheye(double fEyeX, double fEyeY) const;
    SReferencePixel Camera(double fEyeX, double fEyeY, double fExtraPan) const;
    SReferencePixel Panorama(double fEyeX, double fEyeY) const;
    SReferencePixel Multi(double fEyeX, double fEyeY) const;
    SReferencePixel Wall(double fEyeX, double fEyeY) const;
    SReferencePixel LookedUp(const FVector& aRay) const;
    bool Clipped(double x, double y) const;
    double GeometryAspect() const;
    double ScaleMultiplier() const;

    SReferenceSetup m_sSetup;
    CLensCurve m_oLens;
    double m_fRadius = 0.0;
    double m_fImageAspect = 1.0;
    double m_fHalfWidth = 1.0; ///< of the window at distance 1
    double m_fHalfHeight = 1.0;
    bool m_bClipRows = false; ///< rows beyond the input picture are left out
};

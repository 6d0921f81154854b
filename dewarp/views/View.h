/// \file
/// A view as a value: what it shows, how far it may be moved, how it is projected and cut. No mesh, no GL.
#pragma once

#include "dewarp/geometry/MeshKey.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SDirection.h"
#include "dewarp/records/SGRect.h"
#include "dewarp/records/SPTZLimits.h"
#include "platform/Export.h"

class CCustomGPUGeometry;

/// Where the light of a lens ends, in texture coordinates of the frame: an ellipse, and the frame's sides. A
/// picture fades to nothing across a pixel there.
struct SRimCut
{
    float fCenterU = 0.0f;
    float fCenterV = 0.0f;
    float fInverseU = 0.0f; ///< 1 over the radius; 0: there is no rim
    float fInverseV = 0.0f;

    bool IsSet() const { return fInverseU > 0.0f; }
    /// Whether light reaches a place; everywhere without a rim.
    bool IsLit(double u, double v) const
    {
        const double x = (u - static_cast<double>(fCenterU)) * static_cast<double>(fInverseU);
        const double y = (v - static_cast<double>(fCenterV)) * static_cast<double>(fInverseV);
        return !IsSet() || (x * x + y * y <= 1.0 && u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0);
    }
    bool operator==(const SRimCut& sOther) const = default;
};

/// Bands of the target that a view stays inside, as the shader texts take them: framebuffer x minimum and
/// maximum, y minimum and maximum, -1 without a limit; depth below which nothing is drawn, 0 without one;
/// whether texture rows outside the picture are left out.
struct SClipBands
{
    int anPlanes[4] = {-1, -1, -1, -1};
    float fDepth = 0.0f;
    bool bTexCoordRows = false;
    SRimCut sRim;
};

/// A pointer's way over the picture, pixels. The bands are those of the picture that the pointer moves on.
struct SDrag
{
    SGPoint sFrom;
    SGPoint sTo;
    int nViewportWidth = 0;
    int nViewportHeight = 0;
    int nLeftBand = -1; ///< first column that is drawn
    int nTopBand = -1;  ///< first row that is drawn
};

/// What a view is to look at: a direction as the mount counts them, and where it lies in the frame as it is
/// shown.
struct SLookTarget
{
    SDirection sDirection;
    double u = 0.0;
    double v = 0.0;
    int nRotation = 0; ///< of the flat views
};

/// Bounds of a projection, as the views take them: extents for flat views, tangents for cameras.
struct SFrustum
{
    float fLeft = 0.0f;
    float fRight = 0.0f;
    float fBottom = 0.0f;
    float fTop = 0.0f;
    float fNear = 0.01f;
    float fFar = 2.0f;
};

/// One drawing of the mesh: its matrix and its part of the target, pixels.
struct SViewPart
{
    float fMVP[16] = {};
    int nX = 0;
    int nY = 0;
    int nWidth = 0;
    int nHeight = 0;
};

/// Most parts that a view is drawn in.
inline constexpr int MAX_VIEW_PARTS = 4;

/// A kind of view. One constant object each (ViewList.h); none has a state of its own, so whatever is asked
/// follows from the arguments alone.
/// Units: degrees, pixels. Owns: nothing. Thread: any. Fails: never.
class LUMOR_INTERNAL_API CView
{
public:
    CView() = default;
    CView(const CView&) = delete;
    CView& operator=(const CView&) = delete;

    virtual EViewMesh Mesh() const = 0;
    /// What its mesh depends on, and how it is built from that. A view with a mesh of its own (MESH_OF_VIEW)
    /// answers both.
    virtual SMeshKey MeshKey(const SDewarpParams& rParams) const;
    virtual void BuildMesh(CCustomGPUGeometry& rGeometry, const SMeshKey& rKey) const;
    /// Width to height of what the mesh lays out.
    virtual float MeshAspect(const SDewarpParams& rParams) const = 0;
    /// Width to height of what the view shows, for a mesh of that aspect.
    virtual float Aspect(const SDewarpParams& rParams, float fMeshAspect) const;
    virtual float ScaleMultiplier(const SDewarpParams& rParams) const;
    /// Where the view starts.
    virtual SPTZ DefaultPTZ(EMountType eMount) const;
    virtual SPTZLimits Limits(const SDewarpParams& rParams) const = 0;
    /// Brings pan, tilt and zoom inside the limits, in one step; a periodic pan is moved by a turn at most.
    virtual void LimitPTZ(SDewarpParams& rParams) const = 0;
    /// Turns the view so that its middle shows a place, without limiting it; false for views that cannot be
    /// turned there. Zoom stays.
    virtual bool LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const;
    /// Turns a drag into pan and tilt, without limiting them.
    virtual void Drag(const SDrag& rDrag, SDewarpParams& rParams) const = 0;
    virtual SClipBands ClipBands(const SDewarpParams& rParams, float fMeshAspect, int nWidth,
                                 int nHeight) const;
    /// ClipBands; where the host said more about its camera than a known lens's number, a rim takes the place
    /// of what keeps known lenses' views inside the frame.
    SClipBands Bands(const SDewarpParams& rParams, float fMeshAspect, int nWidth, int nHeight) const;
    /// Writes a projection matrix. Bounds that are equal leave it as it is.
    virtual void Project(const SFrustum& rFrustum, float* pProjection) const;
    /// How far the eye stands in front of the model's origin; fChosen is the host's choice for cameras.
    virtual float EyeDistance(float fChosen) const;
    /// Moves a model matrix to pan, tilt and zoom. fImageAspect is the input's width to height as it is
    /// shown, nRotation the turn of the picture.
    virtual void Move(const SDewarpParams& rParams, float fMeshAspect, float fImageAspect, int nRotation,
                      float* pModel) const = 0;
    /// The drawings that make up the view, in their order; returns their number. The viewport and matrices
    /// are those of the whole view. bTopDown: row 0 of the target is the top of the picture.
    virtual int Parts(const SDewarpParams& rParams, const SDewarpMatrices& rMatrices, float fMeshAspect,
                      bool bTopDown, SViewPart* pParts) const;
    /// Size of a picture of this view in which nothing is cut off and no bars stand, for an input of a size.
    virtual void DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const = 0;

protected:
    ~CView() = default;
};

/// One part: the whole viewport with the whole view's matrix.
SViewPart WholeView(const SDewarpMatrices& rMatrices);

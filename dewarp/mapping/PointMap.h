/// \file
/// From points of a drawn picture to points of the frame, and back.
#pragma once

#include "dewarp/control/Decision.h"
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/mapping/MeshIndex.h"
#include "dewarp/mapping/Projection.h"
#include "dewarp/mapping/TriangleBins.h"
#include "dewarp/records/SDirection.h"
#include "dewarp/records/SGRect.h"
#include "dewarp/records/SPointD.h"
#include "platform/Export.h"

#include <cstddef>
#include <vector>

/// Answers for the picture that was drawn last: through its mesh, matrices, parts, bands, cuts and flips,
/// where later triangles lie over earlier ones. Mesh and index are made with the first question after another
/// picture, and kept as long as pictures are alike.
/// Units: pixels from the top left corner of the picture or the frame, pixel centres at halves. A view that
/// reaches beyond the frame shows the frame's edge there; its points have the place beside the frame where
/// the mesh has them. Owns: its mesh and arrays; they grow, never shrink. Thread: any, serialised by the
/// host. Touches no GL. Fails: questions throw for lack of memory, and may be asked again.
class LUMOR_INTERNAL_API CPointMap
{
public:
    /// What is asked about from now on. Makes nothing. bFlips: who draws mirrors the picture as the
    /// decision's settings say.
    void SetDrawn(const SFrameDecision& rDecision, bool bFlips);

    /// The frame's points that are shown at points of the picture; returns how many there are. Where nothing
    /// is drawn, and before anything was, pValid (may be null) says false and the result is not a number.
    /// Points and results may be the same array.
    int ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount);
    /// The other way. Of several places where a frame's point is shown, the one that is drawn first.
    int FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount);

    /// What the lens shows at points of the frame, as the mount counts directions; lengths are 1. False
    /// before a picture was drawn and where the lens shows nothing.
    int FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) const;
    /// The other way.
    int DirectionToFrame(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount) const;
    int ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount);
    int DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount);
    /// A point of the frame as something to look at; false where the lens shows nothing there.
    bool TargetAt(const SPointD& rPoint, SLookTarget& rTarget) const;

    /// Bytes held for the index.
    std::size_t CountBytes() const;

private:
    /// A triangle of one part, ready to be asked.
    struct STriangle
    {
        SScreenTriangle s;
        SGRect sRect;      ///< pixels of the target that its part draws
        bool bCut = false; ///< not all of it is drawn
    };

    bool IsLit(const SPointD& rPoint) const;
    bool Prepare();
    void BuildMesh();
    void BuildTriangles();
    void AddTriangle(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC,
                     const SGRect& rRect);
    bool IsDrawnAt(const STriangle& rTriangle, double x, double y, SPointD& rPosition) const;
    bool Show(double x, double y, SPointD& rPosition) const;
    bool Find(const SPointD& rPosition, SPointD& rPlace) const;
    bool Settle(const STriangle& rTriangle, const SPointD& rPosition, SPointD& rPlace) const;

    SFrameDecision m_sDrawn; ///< of the last picture; row 0 is its top
    SFrameDecision m_sBuilt; ///< of the index
    bool m_bBuilt = false;
    // Made when asked.
    CCustomGPUGeometry m_oGeometry;
    CMeshIndex m_oMesh;
    SMeshKey m_sMeshBuiltFor;
    CProjection m_oProjection;
    SCuts m_sCuts;
    std::vector<STriangle> m_vTriangles; ///< in drawing order
    std::vector<SBox> m_vViewBoxes;      ///< of each triangle, on the target
    std::vector<SBox> m_vFrameBoxes;     ///< and in positions of the frame
    CTriangleBins m_oViewBins;
    CTriangleBins m_oFrameBins;
};

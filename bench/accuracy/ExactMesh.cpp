#include "bench/accuracy/ExactMesh.h"

#include "dewarp/gl/GPUObjPanorama.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using FMatrix = std::array<double, 16>;
/// x, y and w of a vertex after projection: all that decides where in the picture it stands.
using FPoint = std::array<double, 3>;

struct SPart
{
    FMatrix aMVP;
    int nX; ///< of the part of the picture that is drawn to; y from the top
    int nY;
    int nWidth;
    int nHeight;
};

FMatrix Widened(const float* pMatrix)
{
    FMatrix aResult = {};
    std::copy_n(pMatrix, 16, aResult.begin());
    return aResult;
}

/// Turned clockwise by quarters before everything else.
FMatrix Turned(const FMatrix& a, int nQuarters)
{
    FMatrix aResult = a;
    for (int n = 0; n < nQuarters; ++n) {
        const FMatrix aOld = aResult;
        // Columns of the turn by -90 degrees: x goes to -y, y to x.
        for (std::size_t i = 0; i < 4; ++i) {
            aResult[i] = -aOld[4 + i];
            aResult[4 + i] = aOld[i];
        }
    }
    return aResult;
}

std::vector<SPart> ListParts(const SReferenceSetup& s, const CViewSession& oSession)
{
    const FMatrix aMVP = Widened(oSession.pMatrices->fMVP);
    const int w = s.nTargetWidth;
    const int h = s.nTargetHeight;
    if (s.eView == VIEW_PANORAMA_QUARTER && s.eMount != MOUNT_WALL)
        return {{Widened(oSession.pPanorama->m_fUpperMVP), 0, 0, w, h},
                {Widened(oSession.pPanorama->m_fLowerMVP), 0, 0, w, h}};
    if (s.eView == VIEW_VCAM_QUAD && s.eMount != MOUNT_WALL)
        return {{Turned(aMVP, 1), 0, 0, w / 2, h / 2},
                {Turned(aMVP, 2), w / 2, 0, w / 2, h / 2},
                {Turned(aMVP, 3), w / 2, h / 2, w / 2, h / 2},
                {Turned(aMVP, 4), 0, h / 2, w / 2, h / 2}};
    return {{aMVP, 0, 0, w, h}};
}

void BuildMesh(const SReferenceSetup& s, CCustomGPUGeometry& oMesh)
{
    const int w = s.nImageWidth;
    const int h = s.nImageHeight;
    const float fPan = static_cast<float>(s.fPan);
    const float fTilt = static_cast<float>(s.fTilt);
    switch (s.eView) {
    case VIEW_FISHEYE:
        return oMesh.GenerateFisheyeVertices(w, h);
    case VIEW_FISHEYE_CIRCULAR:
        return oMesh.GenerateCircularFisheyeVertices(s.nLensType, w, h);
    case VIEW_PANORAMA_DUAL:
        oMesh.GenerateDualPanoramaVertices(s.nLensType, fPan, fTilt, w, h);
        return;
    case VIEW_PANORAMA_TRIPLE:
        oMesh.GenerateTriplePanoramaVertices(s.nLensType, fPan, fTilt, w, h);
        return;
    case VIEW_VCAM:
    case VIEW_VCAM_QUAD:
        return oMesh.GenerateVCAMVertices(s.nLensType, w, h);
    default:
        if (s.eMount == MOUNT_WALL)
            oMesh.GeneratePanoramaWallVertices(s.nLensType, static_cast<float>(s.fMountTilt), fPan, s.bStrict,
                                               w, h);
        else
            oMesh.GeneratePanoramaVertices(s.nLensType, w, h);
    }
}

FPoint Cross(const FPoint& a, const FPoint& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot3(const FPoint& a, const FPoint& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

FPoint Projected(const FMatrix& m, const float* pVertex)
{
    const auto Row = [&](std::size_t i) {
        return m[i] * static_cast<double>(pVertex[0]) + m[4 + i] * static_cast<double>(pVertex[1]) +
               m[8 + i] * static_cast<double>(pVertex[2]) + m[12 + i];
    };
    return {Row(0), Row(1), Row(3)};
}

/// Smallest box, in normalised device coordinates, of what lies in front of the eye.
struct SBox
{
    double fLeft = 1e30;
    double fRight = -1e30;
    double fBottom = 1e30;
    double fTop = -1e30;

    void Add(const FPoint& a)
    {
        fLeft = std::min(fLeft, a[0] / a[2]);
        fRight = std::max(fRight, a[0] / a[2]);
        fBottom = std::min(fBottom, a[1] / a[2]);
        fTop = std::max(fTop, a[1] / a[2]);
    }
};

SBox BoxOf(const std::array<FPoint, 3>& aCorners)
{
    static constexpr double NEAR = 0.005;
    SBox sBox;
    for (std::size_t i = 0; i < 3; ++i) {
        const FPoint& a = aCorners[i];
        const FPoint& b = aCorners[(i + 1) % 3];
        if (a[2] >= NEAR)
            sBox.Add(a);
        if ((a[2] >= NEAR) == (b[2] >= NEAR))
            continue;
        const double t = (NEAR - a[2]) / (b[2] - a[2]);
        sBox.Add({a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), NEAR});
    }
    return sBox;
}

/// Draws triangles into one part of the picture.
class CPartPainter
{
public:
    CPartPainter(const SPart& sPart, int nTargetWidth, std::vector<SMeshPlace>& vPlaces)
        : m_sPart(sPart), m_nTargetWidth(nTargetWidth), m_vPlaces(vPlaces)
    {}

    void Paint(const CCustomGPUGeometry& oMesh, const std::array<int, 3>& anVertices)
    {
        std::array<FPoint, 3> aCorners;
        for (std::size_t i = 0; i < 3; ++i)
            aCorners[i] = Projected(m_sPart.aMVP, oMesh.m_pVertices + 3 * anVertices[i]);
        const SBox sBox = BoxOf(aCorners);
        if (sBox.fLeft > sBox.fRight)
            return;
        const std::array<FPoint, 3> aEdges = {Cross(aCorners[1], aCorners[2]),
                                              Cross(aCorners[2], aCorners[0]),
                                              Cross(aCorners[0], aCorners[1])};
        const double fVolume = Dot3(aCorners[0], aEdges[0]);
        if (fVolume == 0.0)
            return;
        const int nFirstX = Column(sBox.fLeft);
        const int nLastX = std::min(m_sPart.nWidth - 1, Column(sBox.fRight) + 1);
        const int nFirstY = Row(sBox.fTop);
        const int nLastY = std::min(m_sPart.nHeight - 1, Row(sBox.fBottom) + 1);
        for (int y = nFirstY; y <= nLastY; ++y)
            for (int x = nFirstX; x <= nLastX; ++x)
                PaintPixel(oMesh, anVertices, aEdges, fVolume, x, y);
    }

private:
    int Column(double x) const
    {
        return static_cast<int>(std::clamp((x + 1.0) * 0.5 * m_sPart.nWidth - 1.0, 0.0, 1e6));
    }
    int Row(double y) const
    {
        return static_cast<int>(std::clamp((1.0 - y) * 0.5 * m_sPart.nHeight - 1.0, 0.0, 1e6));
    }

    void PaintPixel(const CCustomGPUGeometry& oMesh, const std::array<int, 3>& anVertices,
                    const std::array<FPoint, 3>& aEdges, double fVolume, int x, int y)
    {
        const FPoint aPixel = {2.0 * (x + 0.5) / m_sPart.nWidth - 1.0,
                               1.0 - 2.0 * (y + 0.5) / m_sPart.nHeight, 1.0};
        std::array<double, 3> afShare;
        for (std::size_t i = 0; i < 3; ++i)
            afShare[i] = Dot3(aEdges[i], aPixel) / fVolume;
        const double fSum = afShare[0] + afShare[1] + afShare[2];
        // One over the pixel's depth: what lies behind the eye is not seen.
        if (!(fSum > 0.0) || std::min({afShare[0], afShare[1], afShare[2]}) < -1e-9 * fSum)
            return;
        SMeshPlace sPlace;
        sPlace.bCovered = true;
        for (std::size_t i = 0; i < 3; ++i) {
            const float* pTexCoord = oMesh.m_pTexCoords + 2 * anVertices[i];
            sPlace.fU += afShare[i] / fSum * static_cast<double>(pTexCoord[0]);
            sPlace.fV += afShare[i] / fSum * static_cast<double>(pTexCoord[1]);
        }
        m_vPlaces[static_cast<std::size_t>(m_sPart.nY + y) * static_cast<std::size_t>(m_nTargetWidth) +
                  static_cast<std::size_t>(m_sPart.nX + x)] = sPlace;
    }

    const SPart& m_sPart;
    int m_nTargetWidth;
    std::vector<SMeshPlace>& m_vPlaces;
};

} // namespace

std::vector<SMeshPlace> ExactMeshPlaces(const SReferenceSetup& sSetup, const CViewSession& oSession)
{
    CCustomGPUGeometry oMesh;
    BuildMesh(sSetup, oMesh);
    std::vector<SMeshPlace> vPlaces(static_cast<std::size_t>(sSetup.nTargetWidth) *
                                    static_cast<std::size_t>(sSetup.nTargetHeight));
    const bool bFan = sSetup.eView == VIEW_FISHEYE_CIRCULAR;
    for (const SPart& sPart : ListParts(sSetup, oSession)) {
        CPartPainter oPainter(sPart, sSetup.nTargetWidth, vPlaces);
        for (int i = 2; i < oMesh.m_nVertexCount; i += bFan ? 1 : 3)
            oPainter.Paint(oMesh, {bFan ? 0 : i - 2, i - 1, i});
    }
    return vPlaces;
}

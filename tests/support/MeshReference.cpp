#include "tests/support/MeshReference.h"

#include "dewarp/control/Control.h"
#include "dewarp/control/Decision.h"
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/records/Mirrors.h"

#include <algorithm>
#include <cmath>

struct CMeshReference::SCorner
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;
    double u = 0.0;
    double v = 0.0;
};

/// On the target: pixels; the rest divided by w.
struct CMeshReference::STriangle
{
    double afX[3];
    double afY[3];
    double afU[3];
    double afV[3];
    double afW[3];
    double afZ[3];
};

struct CMeshReference::SPart
{
    SViewPart sView;
    SClipBands sBands;
};

CMeshReference::CMeshReference(const SMeshState& rState)
    : m_nWidth(rState.nTargetWidth), m_nHeight(rState.nTargetHeight),
      m_vPixels(static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight)),
      m_vSlopes(m_vPixels.size())
{
    CReport oReport("reference");
    CControl oControl(oReport);
    oControl.sParams = rState.sParams;
    oControl.nRotation = rState.nRotation;
    oControl.fEyeDistance = rState.fEyeDistance;
    SFrameDecision sDecision;
    DecideView(oControl, {m_nWidth, m_nHeight, true}, sDecision);
    CCustomGPUGeometry oGeometry;
    sDecision.pView->BuildMesh(oGeometry, sDecision.sMesh);
    const SMirrors sMirrors = MirrorsOf(rState.bFlipHorizontal, rState.bFlipVertical, rState.nRotation);
    for (int nPart = 0; nPart < sDecision.nParts; ++nPart) {
        const SPart sPart = {sDecision.aParts[nPart], sDecision.sBands};
        std::vector<SCorner> vCorners;
        for (int i = 0; i < oGeometry.m_nVertexCount; ++i) {
            const float* p = oGeometry.m_pVertices + 3 * static_cast<std::ptrdiff_t>(i);
            const float* t = oGeometry.m_pTexCoords + 2 * static_cast<std::ptrdiff_t>(i);
            double af[4] = {};
            for (int k = 0; k < 4; ++k) {
                const auto Factor = [&](int nColumn) {
                    return static_cast<double>(sPart.sView.fMVP[4 * nColumn + k]);
                };
                af[k] = Factor(0) * static_cast<double>(p[0]) + Factor(1) * static_cast<double>(p[1]) +
                        Factor(2) * static_cast<double>(p[2]) + Factor(3);
            }
            const double u = static_cast<double>(t[0]);
            const double v = static_cast<double>(t[1]);
            vCorners.push_back(
                {af[0], -af[1], af[2], af[3], sMirrors.bX ? 1.0 - u : u, sMirrors.bY ? 1.0 - v : v});
        }
        DrawPart(sPart, vCorners, sDecision.sMesh.eMesh == MESH_FISHEYE_CIRCULAR);
    }
    FindEdges();
}

void CMeshReference::DrawPart(const SPart& rPart, const std::vector<SCorner>& vCorners, bool bFan)
{
    if (bFan) {
        for (std::size_t i = 2; i < vCorners.size(); ++i)
            DrawTriangle(rPart, {vCorners[0], vCorners[i - 1], vCorners[i]});
        return;
    }
    for (std::size_t i = 0; i + 2 < vCorners.size(); i += 3)
        DrawTriangle(rPart, {vCorners[i], vCorners[i + 1], vCorners[i + 2]});
}

/// Cuts to what lies between the near and the far plane, and draws the rest.
void CMeshReference::DrawTriangle(const SPart& rPart, const std::array<SCorner, 3>& aCorners)
{
    const auto Inside = [](const SCorner& r, int nPlane) {
        return nPlane == 0 ? r.z + r.w : nPlane == 1 ? r.w - r.z : r.w - 1e-7;
    };
    std::vector<SCorner> vPolygon(aCorners.begin(), aCorners.end());
    for (int nPlane = 0; nPlane < 3; ++nPlane) {
        std::vector<SCorner> vRest;
        for (std::size_t i = 0; i < vPolygon.size(); ++i) {
            const SCorner& a = vPolygon[i];
            const SCorner& b = vPolygon[(i + 1) % vPolygon.size()];
            const double fA = Inside(a, nPlane);
            const double fB = Inside(b, nPlane);
            if (fA >= 0.0)
                vRest.push_back(a);
            if ((fA >= 0.0) == (fB >= 0.0))
                continue;
            const double t = fA / (fA - fB);
            vRest.push_back({a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t,
                             a.w + (b.w - a.w) * t, a.u + (b.u - a.u) * t, a.v + (b.v - a.v) * t});
        }
        vPolygon = vRest;
    }
    for (std::size_t i = 2; i < vPolygon.size(); ++i) {
        STriangle t;
        int k = 0;
        for (const SCorner& r : {vPolygon[0], vPolygon[i - 1], vPolygon[i]}) {
            t.afX[k] = rPart.sView.nX + (r.x / r.w + 1.0) * 0.5 * rPart.sView.nWidth;
            t.afY[k] = rPart.sView.nY + (r.y / r.w + 1.0) * 0.5 * rPart.sView.nHeight;
            t.afU[k] = r.u / r.w;
            t.afV[k] = r.v / r.w;
            t.afW[k] = 1.0 / r.w;
            t.afZ[k++] = (r.z / r.w + 1.0) * 0.5;
        }
        DrawFlat(rPart, t);
    }
}

/// Every pixel whose middle lies in a triangle, or on its outline.
void CMeshReference::DrawFlat(const SPart& rPart, const STriangle& t)
{
    const double fArea =
        (t.afX[1] - t.afX[0]) * (t.afY[2] - t.afY[0]) - (t.afX[2] - t.afX[0]) * (t.afY[1] - t.afY[0]);
    if (fArea == 0.0)
        return;
    const auto Shares = [&](double x, double y) {
        std::array<double, 3> a;
        a[1] = ((x - t.afX[0]) * (t.afY[2] - t.afY[0]) - (t.afX[2] - t.afX[0]) * (y - t.afY[0])) / fArea;
        a[2] = ((t.afX[1] - t.afX[0]) * (y - t.afY[0]) - (x - t.afX[0]) * (t.afY[1] - t.afY[0])) / fArea;
        a[0] = 1.0 - a[1] - a[2];
        return a;
    };
    const auto Mix = [](const std::array<double, 3>& a, const double(&af)[3]) {
        return a[0] * af[0] + a[1] * af[1] + a[2] * af[2];
    };
    const auto Limit = [](double f, int nLow, int nHigh) {
        return static_cast<int>(std::clamp(f, static_cast<double>(nLow), static_cast<double>(nHigh)));
    };
    const SViewPart& s = rPart.sView;
    const int nRight = std::min(s.nX + s.nWidth, m_nWidth);
    const int nBottom = std::min(s.nY + s.nHeight, m_nHeight);
    const int nFirstX =
        Limit(std::floor(*std::min_element(t.afX, t.afX + 3)) - 1.0, std::max(s.nX, 0), nRight);
    const int nEndX = Limit(std::ceil(*std::max_element(t.afX, t.afX + 3)) + 1.0, 0, nRight);
    const int nFirstY =
        Limit(std::floor(*std::min_element(t.afY, t.afY + 3)) - 1.0, std::max(s.nY, 0), nBottom);
    const int nEndY = Limit(std::ceil(*std::max_element(t.afY, t.afY + 3)) + 1.0, 0, nBottom);
    const int* const anBands = rPart.sBands.anPlanes;
    for (int y = nFirstY; y < nEndY; ++y)
        for (int x = nFirstX; x < nEndX; ++x) {
            const std::array<double, 3> a = Shares(x + 0.5, y + 0.5);
            if (a[0] < 0.0 || a[1] < 0.0 || a[2] < 0.0)
                continue;
            const double w = Mix(a, t.afW);
            const double u = Mix(a, t.afU) / w;
            const double v = Mix(a, t.afV) / w;
            if ((anBands[0] != -1 && anBands[1] != -1 && (x + 0.5 < anBands[0] || x + 0.5 > anBands[1])) ||
                (anBands[2] != -1 && anBands[3] != -1 && (y + 0.5 < anBands[2] || y + 0.5 > anBands[3])) ||
                (rPart.sBands.fDepth != 0.0f && Mix(a, t.afZ) < static_cast<double>(rPart.sBands.fDepth)) ||
                (rPart.sBands.bTexCoordRows && (v < 0.0 || v > 1.0)))
                continue;
            const std::size_t n = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                                  static_cast<std::size_t>(x);
            m_vPixels[n] = {true, false, u, v};
            const std::array<double, 3> aX = Shares(x + 1.5, y + 0.5);
            const std::array<double, 3> aY = Shares(x + 0.5, y + 1.5);
            m_vSlopes[n] = {Mix(aX, t.afU) / Mix(aX, t.afW) - u, Mix(aX, t.afV) / Mix(aX, t.afW) - v,
                            Mix(aY, t.afU) / Mix(aY, t.afW) - u, Mix(aY, t.afV) / Mix(aY, t.afW) - v};
        }
}

/// Whether a neighbour is another part of the picture: where this pixel's triangle goes on to is not what it
/// shows.
bool CMeshReference::IsEdge(int x, int y, int nX, int nY) const
{
    const SMeshPixel& rThis = At(x, y);
    if (nX < 0 || nY < 0 || nX >= m_nWidth || nY >= m_nHeight)
        return false; // the target's own edge is none
    const SMeshPixel& rOther = At(nX, nY);
    if (rThis.bDrawn != rOther.bDrawn || !rThis.bDrawn)
        return rThis.bDrawn != rOther.bDrawn;
    const std::array<double, 4>& r =
        m_vSlopes[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                  static_cast<std::size_t>(x)];
    const double fU = rThis.u + (nX - x) * r[0] + (nY - y) * r[2];
    const double fV = rThis.v + (nX - x) * r[1] + (nY - y) * r[3];
    const double fStep = std::max({std::abs(r[0]), std::abs(r[1]), std::abs(r[2]), std::abs(r[3])});
    return std::hypot(rOther.u - fU, rOther.v - fV) > std::max(0.6 * fStep, 0.002);
}

void CMeshReference::FindEdges()
{
    for (int y = 0; y < m_nHeight; ++y)
        for (int x = 0; x < m_nWidth; ++x)
            for (int i = 0; i < 9; ++i) {
                const int nRow = i / 3;
                if (IsEdge(x, y, x + i % 3 - 1, y + nRow - 1))
                    m_vPixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                              static_cast<std::size_t>(x)]
                        .bEdge = true;
            }
}

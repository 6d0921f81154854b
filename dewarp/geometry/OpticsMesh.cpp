#include "dewarp/geometry/OpticsMesh.h"

#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/OpticsRings.h"
#include "dewarp/geometry/Surface.h"
#include "dewarp/geometry/ViewOptics.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;
/// How far meshes reach beyond the lens's edge, so that a rim has somewhere to fade to and every cell that it
/// crosses is whole. Straight behind the camera all azimuths meet, and no triangle may lie across that.
const double BEYOND_EDGE = 5.0 * RADIANS;
const double MOST_ANGLE = 179.0 * RADIANS;
/// Texture coordinate of a point that no triangle may use.
const float UNSEEN = 1e9f;
const int POINT_FLOATS = 5;

/// A rectangle of a flat view's surface and how it is divided.
struct SPatch
{
    double fLeft;
    double fRight;
    double fBottom;
    double fTop;
    int nCols;
    int nRows;
};

const SPatch DUAL[] = {{-0.8, 0.0, -0.5, 0.5, 38, 46}, {0.0, 0.8, -0.5, 0.5, 38, 46}};
const SPatch TRIPLE[] = {
    {-1.2, -0.4, -0.5, 0.5, 38, 46}, {0.4, 1.2, -0.5, 0.5, 38, 46}, {-0.4, 0.4, -0.5, 0.5, 38, 46}};

double MostAngle(const CViewOptics& rOptics)
{
    return std::min(rOptics.Lens().Edge() + BEYOND_EDGE, MOST_ANGLE);
}

/// A mesh of cells on a grid of points in the generator's scratch buffer.
class CGridMesh
{
public:
    CGridMesh(CCustomGPUGeometry& rGeometry, int nCols, int nRows)
        : m_rGeometry(rGeometry), m_nCols(nCols), m_nRows(nRows)
    {
        m_rGeometry.CheckTemporaryGridBuffer((nCols + 1) * (nRows + 1) * POINT_FLOATS);
    }

    float* Point(int nCol, int nRow) const
    {
        return m_rGeometry.m_pTempGrid +
               static_cast<std::ptrdiff_t>(nRow * (m_nCols + 1) + nCol) * POINT_FLOATS;
    }

    /// Appends the cells that the lens sees a corner of.
    void Emit() const
    {
        for (int r = 0; r < m_nRows; ++r) {
            for (int c = 0; c < m_nCols; ++c) {
                const float* const apCorners[] = {Point(c, r), Point(c, r + 1), Point(c + 1, r + 1),
                                                  Point(c + 1, r)};
                if (std::all_of(std::begin(apCorners), std::end(apCorners),
                                [](const float* p) { return p[3] != UNSEEN; }))
                    EmitCell(apCorners);
            }
        }
    }

private:
    void EmitCell(const float* const (&apCorners)[4]) const
    {
        for (const int n : {0, 1, 2, 2, 3, 0}) {
            const float* p = apCorners[n];
            m_rGeometry.AddVertex(p[0], p[1], p[2], p[3], p[4]);
        }
    }

    CCustomGPUGeometry& m_rGeometry;
    int m_nCols;
    int m_nRows;
};

int CountVertices(const SPatch* pPatches, int nPatches)
{
    int nVertices = 0;
    for (int n = 0; n < nPatches; ++n)
        nVertices += 6 * pPatches[n].nCols * pPatches[n].nRows;
    return nVertices;
}

/// One point of a flat view: its place on the surface, and what it shows.
void SetFlatPoint(const CViewOptics& rOptics, const SPatch& rPatch, double fMost, double x, double y,
                  float* p)
{
    // Patches meet at their edges and show different things there: each is asked a hair inside.
    const double fHair = 1e-7;
    const double fInsideX = std::clamp(x, rPatch.fLeft + fHair, rPatch.fRight - fHair);
    const SDirection d = rOptics.Body().ToBody(rOptics.DirectionAt(fInsideX, y, 0.0));
    double u = 0.0;
    double v = 0.0;
    rOptics.At(fInsideX, y, 0.0, u, v);
    const bool bSeen = std::atan2(std::hypot(d.x, d.y), d.z) <= fMost;
    p[0] = static_cast<float>(x);
    p[1] = static_cast<float>(y);
    p[2] = 0.0f;
    p[3] = bSeen ? static_cast<float>(u) : UNSEEN;
    p[4] = static_cast<float>(v);
}

void BuildPatches(CCustomGPUGeometry& rGeometry, const CViewOptics& rOptics, const SPatch* pPatches,
                  int nPatches)
{
    rGeometry.CheckBufferSize(CountVertices(pPatches, nPatches));
    const double fMost = MostAngle(rOptics);
    for (int n = 0; n < nPatches; ++n) {
        const SPatch& rPatch = pPatches[n];
        const CGridMesh oGrid(rGeometry, rPatch.nCols, rPatch.nRows);
        for (int r = 0; r <= rPatch.nRows; ++r) {
            const double y = rPatch.fTop + (rPatch.fBottom - rPatch.fTop) * r / rPatch.nRows;
            for (int c = 0; c <= rPatch.nCols; ++c)
                SetFlatPoint(rOptics, rPatch, fMost,
                             rPatch.fLeft + (rPatch.fRight - rPatch.fLeft) * c / rPatch.nCols, y,
                             oGrid.Point(c, r));
        }
        oGrid.Emit();
    }
}

/// One turn of the panorama's band, which lies on the surface twice.
void BuildBand(CCustomGPUGeometry& rGeometry, const CViewOptics& rOptics)
{
    const double fWidth = 2.0 * static_cast<double>(rGeometry.m_fGeometryAspect);
    // A row every 1.4 degrees, whatever the band's height.
    const int nRows = std::clamp(static_cast<int>(514.0 / fWidth), 4, 130);
    const SPatch asPatches[] = {{-fWidth, 0.0, -1.0, 1.0, 270, nRows}, {0.0, fWidth, -1.0, 1.0, 270, nRows}};
    BuildPatches(rGeometry, rOptics, asPatches, 2);
}

/// A view about the vertical: a cell every degree and a half, or what its projection makes of that.
void BuildSurface(CCustomGPUGeometry& rGeometry, const CViewOptics& rOptics, const SMeshKey& rKey)
{
    const double fAspect = static_cast<double>(rGeometry.m_fGeometryAspect);
    const SViewShape sSpan = CSurface::SpanOf(rKey.eMesh, rKey.eMount, rKey.sShape);
    const int nCols = std::clamp(static_cast<int>(sSpan.fSpanX / 1.5f), 40, 240);
    const int nRows = std::clamp(static_cast<int>(sSpan.fSpanY / 1.5f), 40, 120);
    const CSurface oSurface(rKey);
    const SPatch sPatch = {-fAspect, fAspect, oSurface.LowestRow(), oSurface.HighestRow(), nCols, nRows};
    BuildPatches(rGeometry, rOptics, &sPatch, 1);
}

/// A field wider than the half-sphere widens the columns; rows still end at the poles.
void BuildWall(CCustomGPUGeometry& rGeometry, const CViewOptics& rOptics)
{
    SPatch sPatch = {-1.0, 1.0, -1.0, 1.0, 120, 120};
    const double fSpan = rOptics.WallSpan();
    if (fSpan > 180.0) {
        sPatch.fTop = 180.0 / fSpan;
        sPatch.fBottom = -sPatch.fTop;
        sPatch.nCols = static_cast<int>(sPatch.nCols * fSpan / 180.0);
    }
    BuildPatches(rGeometry, rOptics, &sPatch, 1);
}

/// The part of the sphere that the lens sees: rings about the body's axis.
void BuildSphere(CCustomGPUGeometry& rGeometry, const CViewOptics& rOptics)
{
    const std::vector<double> vRings = PlaceRings(rOptics.Lens().Curve(), MostAngle(rOptics));
    const int nRows = static_cast<int>(vRings.size()) - 1;
    const int nSectors = 128;
    rGeometry.CheckBufferSize(6 * nRows * nSectors);
    const CGridMesh oGrid(rGeometry, nSectors, nRows);
    for (int r = 0; r <= nRows; ++r) {
        const double fAngle = vRings[static_cast<std::size_t>(r)];
        for (int c = 0; c <= nSectors; ++c) {
            const double fAzimuth = 2.0 * std::numbers::pi * (c % nSectors) / nSectors;
            const SDirection d =
                rOptics.Body().ToMount({std::sin(fAngle) * std::cos(fAzimuth),
                                        std::sin(fAngle) * std::sin(fAzimuth), std::cos(fAngle)});
            double u = 0.0;
            double v = 0.0;
            rOptics.At(d.x, d.y, -d.z, u, v);
            float* p = oGrid.Point(c, r);
            p[0] = static_cast<float>(d.x);
            p[1] = static_cast<float>(d.y);
            p[2] = static_cast<float>(-d.z);
            p[3] = static_cast<float>(u);
            p[4] = static_cast<float>(v);
        }
    }
    oGrid.Emit();
}

/// The lens's circle as a fan, two per cent wider, as far as it lies in the frame.
void BuildCircle(CCustomGPUGeometry& rGeometry, const SMeshKey& rKey, const SRimEllipse& rRim)
{
    const int nRimPoints = 181;
    const double fAspect = static_cast<double>(rGeometry.m_fGeometryAspect);
    const auto PlaceAt = [&](double u, double v) {
        rGeometry.AddVertex(static_cast<float>((2.0 * u - 1.0) * fAspect), static_cast<float>(1.0 - 2.0 * v),
                            0.0f, static_cast<float>(u), static_cast<float>(v));
    };
    const double fLeft = std::clamp((rRim.fCenterX - 1.02 * rRim.fRadiusX) / rKey.nImageWidth, 0.0, 1.0);
    const double fRight = std::clamp((rRim.fCenterX + 1.02 * rRim.fRadiusX) / rKey.nImageWidth, 0.0, 1.0);
    const double fTop = std::clamp((rRim.fCenterY - 1.02 * rRim.fRadiusY) / rKey.nImageHeight, 0.0, 1.0);
    const double fBottom = std::clamp((rRim.fCenterY + 1.02 * rRim.fRadiusY) / rKey.nImageHeight, 0.0, 1.0);
    rGeometry.CheckBufferSize(nRimPoints + 1);
    PlaceAt(0.5 * (fLeft + fRight), 0.5 * (fTop + fBottom));
    for (int k = 0; k < nRimPoints; ++k) {
        const double t = 2.0 * k * RADIANS;
        PlaceAt(
            std::clamp((rRim.fCenterX + 1.02 * rRim.fRadiusX * std::cos(t)) / rKey.nImageWidth, 0.0, 1.0),
            std::clamp((rRim.fCenterY - 1.02 * rRim.fRadiusY * std::sin(t)) / rKey.nImageHeight, 0.0, 1.0));
    }
}

/// A lens may see nothing of a view. A mesh without vertices means one that is not made yet, so this one gets
/// a triangle without area.
void KeepSomething(CCustomGPUGeometry& rGeometry)
{
    if (rGeometry.m_nVertexCount > 0)
        return;
    rGeometry.CheckBufferSize(3);
    for (int i = 0; i < 3; ++i)
        rGeometry.AddVertex(0.0f, 0.0f, 0.0f, 0.5f, 0.5f);
}

} // namespace

float AspectOf(const SMeshKey& rKey)
{
    if (IsSurfaceMesh(rKey.eMesh))
        return static_cast<float>(CSurface(rKey).Aspect());
    if (rKey.eMesh == MESH_PANORAMA && rKey.sShape.HasBand())
        return 360.0f / (rKey.sShape.fBandUpper - rKey.sShape.fBandLower);
    return MeshAspect(rKey.eMesh, rKey.nImageWidth, rKey.nImageHeight);
}

bool NeedsOpticsMesh(const SMeshKey& rKey)
{
    if (rKey.eMesh != MESH_FISHEYE_CIRCULAR && !CViewOptics::HasDirections(rKey.eMesh))
        return false;
    return rKey.pOptics != nullptr || IsSurfaceMesh(rKey.eMesh) || rKey.sShape.HasBand();
}

void BuildOpticsMesh(CCustomGPUGeometry& rGeometry, const SMeshKey& rKey)
{
    rGeometry.m_nVertexCount = 0;
    rGeometry.m_nImageWidth = rKey.nImageWidth;
    rGeometry.m_nImageHeight = rKey.nImageHeight;
    rGeometry.m_fGeometryAspect = AspectOf(rKey);
    if (rKey.nImageWidth < 1 || rKey.nImageHeight < 1)
        return;
    const CViewOptics oOptics(rKey);
    const SRimEllipse sRim = oOptics.Lens().Rim();
    // Another thread may ask for the radius in pixels while a frame is drawn.
    std::atomic_ref<float>(rGeometry.m_fRadius)
        .store(static_cast<float>(sRim.fRadiusX), std::memory_order_relaxed);
    switch (rKey.eMesh) {
    case MESH_FISHEYE_CIRCULAR:
        BuildCircle(rGeometry, rKey, sRim);
        break;
    case MESH_VCAM:
        BuildSphere(rGeometry, oOptics);
        break;
    case MESH_PANORAMA:
        BuildBand(rGeometry, oOptics);
        break;
    case MESH_EQUIRECTANGULAR:
    case MESH_CYLINDRICAL:
    case MESH_PANINI:
        BuildSurface(rGeometry, oOptics, rKey);
        break;
    case MESH_PANORAMA_WALL:
        BuildWall(rGeometry, oOptics);
        break;
    case MESH_PANORAMA_DUAL:
        BuildPatches(rGeometry, oOptics, DUAL, 2);
        break;
    default:
        BuildPatches(rGeometry, oOptics, TRIPLE, 3);
        break;
    }
    KeepSomething(rGeometry);
}

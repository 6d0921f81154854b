/// \file
/// One build of the virtual-camera mesh: the quadrant of the fisheye disc left of and above the centre, cut
/// into bands between grid rows. Inside the library only.
#pragma once

#include "dewarp/geometry/CustomGPUGeometry.h"

#include <array>
#include <cstddef>

/// Uses the generator's scratch buffers; they must outlive it.
class CVCAMBuild
{
public:
    static constexpr int nGridCols = 31;
    static constexpr int nGridRows = 31;
    static constexpr int nBands = nGridRows - 1;
    static constexpr int nBandVertices = 600; ///< room of one band in m_pVCAMVertices

    /// fHalfWidth, fHalfHeight: extents of the quadrant in pixels, both above 0 and at most the radius.
    CVCAMBuild(CCustomGPUGeometry& oGeometry, float fHalfWidth, float fHalfHeight);

    /// Pixel offsets of the grid points into m_pTempGrid, y upward.
    void FillGrid();
    /// Triangles of the band below row nBand; bands must come in order. Stops the program when the circle's
    /// edge leaves the grid.
    void BuildBand(int nBand);
    /// Puts the vertices of the quadrant's inner edges exactly on the axes, so that no crack opens between
    /// the mirrored quadrants.
    void CloseSeams();
    /// Appends the four quadrants to the output arrays, which must have room for 12 vertices a triangle.
    void Emit();
    int CountTriangles() const;

private:
    float GridX(int nCol) const { return m_oGeometry.m_pTempGrid[2 * nCol]; }
    float* Band(int nBand) const;
    int StartWideningBand(int nFirstCol, float fEdge, float y, int& nVertex, int& nTriangles);
    void EmitQuadrant(const float* pBand, int nVertices, bool bMirrorX, bool bMirrorY);

    CCustomGPUGeometry& m_oGeometry;
    float m_fHalfWidth;
    float m_fHalfHeight;
    float m_fPreviousEdge; ///< x of the circle at the row above the current band
    float m_fPreviousY;    ///< y of that row
    std::array<int, nGridRows> m_anTriangles{};
};

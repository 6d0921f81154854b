/// \file
/// Which texels of the frame masks cover.
#pragma once

#include "dewarp/records/SGRect.h"

#include <vector>

/// Texels side by side that one polygon covers.
struct SMaskSpan
{
    int y;
    int nPolygon;
    int x;
    int nEnd;
};

/// The triangles of masks. A texel is covered where its middle lies inside a triangle, on its edge or next to
/// it: at least what any rasteriser covers.
/// Units: texels. Owns: its arrays. Thread: any, serialised by the host. Fails: throws for lack of memory.
class CMaskCoverage
{
public:
    /// False when a polygon of three points or more has no mesh. Polygons without alpha cover nothing.
    bool SetUp(const std::vector<SGPolygon>& vPolygons, int nWidth, int nHeight);
    /// Rows that may be covered.
    int FirstRow() const { return m_nFirstRow; }
    int EndRow() const { return m_nEndRow; }
    /// Spans of some rows, by row, polygon and column; those of one polygon may overlap.
    void FindSpans(int nFirstRow, int nEndRow, std::vector<SMaskSpan>& rSpans) const;

private:
    struct STriangle
    {
        double afX[3];
        double afY[3];
        double fWidening;
        int nFirstRow;
        int nEndRow;
        int nPolygon;
    };
    void AddTriangle(const float* pVertices, int nPolygon);
    static bool FindSpan(const STriangle& rTriangle, double fY, double& rLeft, double& rRight);

    std::vector<STriangle> m_vTriangles;
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nFirstRow = 0;
    int m_nEndRow = 0;
};

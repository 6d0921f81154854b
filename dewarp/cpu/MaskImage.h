/// \file
/// The privacy masks of a frame, row by row.
#pragma once

#include "dewarp/cpu/LayerSource.h"
#include "dewarp/cpu/MaskCoverage.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Texels of one colour side by side.
struct SMaskSegment
{
    int x;
    int nEnd;
    std::uint32_t nRGBA;
};

/// What masks leave in an image of the frame's size, as segments of its rows; a source of layers.
/// Units: texels of the frame. Owns: its arrays, as large as the masks have edges. Thread: Paint any,
/// serialised by the host; questions on several at once. Fails: Paint with false, and what was painted must
/// not be shown then; it throws for lack of memory.
class CMaskImage
{
public:
    /// Paints polygons one over the other; without alpha or with fewer than three points they leave nothing.
    bool Paint(const std::vector<SGPolygon>& vPolygons, int nWidth, int nHeight);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    bool IsEmpty() const { return m_vSegments.empty(); }
    std::uint32_t At(int x, int y) const;
    ELayerClass Classify(int x0, int y0, int x1, int y1, std::uint32_t& rColour) const;
    void Read(int x0, int y0, int x1, int y1, std::uint32_t* pTexels) const;
    std::size_t CountBytes() const;

private:
    using TSegments = std::vector<SMaskSegment>;
    void Clear(int nWidth, int nHeight);
    void PaintRows(const CMaskCoverage& rCoverage, const std::vector<SGPolygon>& vPolygons);
    void PaintRow(const SMaskSpan* pFirst, const SMaskSpan* pEnd, const std::vector<SGPolygon>& vPolygons);
    void SummariseRows();
    static std::uint32_t StateOf(const TSegments& rSegments, std::size_t nFirst, std::size_t nEnd, int x0,
                                 int x1);

    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nTop = 0; ///< first row of m_vRows
    int m_nBottom = 0;
    TSegments m_vSegments;
    std::vector<std::size_t> m_vRows; ///< for each row, its first segment; one more behind the last
    TSegments m_vBandSegments;        ///< states of BAND_ROWS rows together
    std::vector<std::size_t> m_vBands;
    // While painting: the row so far, the next one, and what a polygon covers of it.
    TSegments m_vRow;
    TSegments m_vNext;
    TSegments m_vCovered;
};

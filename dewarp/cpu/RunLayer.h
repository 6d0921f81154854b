/// \file
/// What lies over a picture: runs of its pixels, sampled once, blended into every frame.
#pragma once

#include "dewarp/Dewarper.h"
#include "dewarp/cpu/RunColours.h"
#include "dewarp/cpu/RunRows.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Masks, an overlay image or text as runs of the target's pixels, premultiplied by their alpha in the
/// target's own format. In YUV targets chroma has runs of its own at half resolution: a chroma place is as
/// opaque as the most opaque of its four pixels, so that no colour shines through beside a mask's edge.
/// Units: pixels of the target. Owns: its runs; they grow, never shrink. Thread: any, serialised by the host;
/// rows may be blended on several threads at once. Fails: what adds may throw for lack of memory; blending
/// never fails and allocates nothing.
class CRunLayer
{
public:
    /// Empties the layer. Rows follow, from the top; several pieces of one row from the left.
    void Begin(const SLayerFormat& rFormat);
    /// Pixels side by side: bytes R, G, B, A from the low one up, not premultiplied. Those without alpha are
    /// left out.
    void AddRow(int y, int x, const std::uint32_t* pRGBA, int nPixels);
    /// Pixels of one colour.
    void AddRun(int y, int x, int nPixels, std::uint32_t nRGBA);
    void Finish();
    /// Takes over the rows of a finished layer of the same format, below those of this finished one: no
    /// chroma place may have pixels of both.
    void Append(const CRunLayer& rLower);

    /// Rows from nFirstRow to before nEndRow of a picture whose row 0 starts at pTarget, 4 bytes a pixel:
    /// layer + pixel (1 - alpha), to the nearest; the pixel's own alpha stays. bByAlpha: the layer counts as
    /// much as that alpha, as in pictures that are premultiplied by it.
    void BlendPixels(unsigned char* pTarget, std::ptrdiff_t nStride, int nFirstRow, int nEndRow,
                     bool bByAlpha) const;
    /// Rows likewise, of a layer whose pixels are black: colour and alpha fade together.
    void FadePixels(unsigned char* pTarget, std::ptrdiff_t nStride, int nFirstRow, int nEndRow) const;
    /// The same in a picture of IMAGE_FORMAT_NV12 or IMAGE_FORMAT_YUV420P. nFirstRow is even; nEndRow, too,
    /// unless the picture ends there.
    void BlendYUV(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const;

    /// Whether there is anything in some rows.
    bool HasRows(int nFirstRow, int nEndRow) const { return m_sPixels.Has(nFirstRow, nEndRow); }
    bool IsEmpty() const { return m_sPixels.vRuns.empty(); }
    /// Bytes held.
    std::size_t CountBytes() const;

private:
    void AddPixels(int y, int x, const std::uint32_t* pRGBA, int nPixels);
    void AddValues(const std::uint32_t* pRGBA, int nPixels);
    SRunRows& SourceRow(int y);
    void AddChroma();
    void AddChromaPlaces(int y, int x, int nPlaces, const std::uint32_t (&anRGBA)[4]);
    void BlendChroma(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const;

    SLayerFormat m_sFormat;
    CRunColours m_oColours;
    SRunRows m_sPixels;                   ///< or luma
    std::uint32_t m_nLastColour = 0;      ///< of the last run, where that has one colour
    std::vector<std::uint32_t> m_vPixels; ///< premultiplied, in the target's order, alpha on top
    std::vector<unsigned char> m_vLuma;   ///< premultiplied
    std::vector<unsigned char> m_vLumaAlpha;
    SRunRows m_sChroma;
    std::vector<unsigned char> m_vU; ///< premultiplied
    std::vector<unsigned char> m_vV;
    std::vector<unsigned char> m_vChromaAlpha;
    // While rows are added: the two that share chroma, as they came.
    std::array<SRunRows, 2> m_asSource;
    std::array<std::vector<std::uint32_t>, 2> m_avSource;
    int m_nSourcePair = -1;
};

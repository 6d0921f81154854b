/// \file
/// Text as it lies over the picture.
#pragma once

#include "dewarp/cpu/RunLayer.h"
#include "dewarp/cpu/TextCanvas.h"

#include <cstddef>
#include <vector>

/// Strings drawn one over the other where they share pixels. Those that do are a group, and a group whose
/// strings stay as they are is not drawn again: a clock costs its own pixels.
/// Units: pixels of the target. Owns: a layer for each group. Thread: Build any, serialised by the host; rows
/// may be blended on several threads at once. Fails: Build throws for lack of memory and leaves no text then;
/// blending never fails and allocates nothing.
class CTextLayer
{
public:
    void Build(const std::vector<SGPUString>& vStrings, int nTargetWidth, int nTargetHeight,
               const SLayerFormat& rFormat);
    void Clear();

    /// As those of a CRunLayer, of all groups.
    void BlendPixels(unsigned char* pTarget, std::ptrdiff_t nStride, int nFirstRow, int nEndRow) const;
    void BlendYUV(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const;
    bool IsEmpty() const;
    std::size_t CountBytes() const;
    /// Where a picture with text has no transparency: twice as wide and high as each string, round its first
    /// corner, inside the target.
    const std::vector<SGRect>& OpaqueRects() const { return m_vOpaque; }
    /// How many groups the last Build drew.
    int CountDrawn() const { return m_nDrawn; }

private:
    struct SGroup
    {
        std::vector<SGPUString> vStrings; ///< in the order of the list
        CRunLayer oLayer;
    };
    static std::vector<SGroup> FindGroups(const std::vector<SGPUString>& vStrings, int nWidth, int nHeight);
    void ListOpaque(const std::vector<SGroup>& vGroups);
    bool TakeOld(SGroup& rGroup);
    void DrawGroup(SGroup& rGroup);

    int m_nWidth = 0;
    int m_nHeight = 0;
    SLayerFormat m_sFormat;
    std::vector<SGroup> m_vGroups;
    std::vector<SGRect> m_vOpaque;
    CTextCanvas m_oCanvas;
    int m_nDrawn = 0;
};

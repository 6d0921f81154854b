/// \file
/// Where something lies over the frame.
#pragma once

class CMaskImage;
class COverlayImage;

/// Tells which texels of the frame lie under masks or an input overlay, so that what they show is not carried
/// to pixels beside them.
/// Units: texels. Owns: nothing; masks and overlay must outlive it. Thread: any. Fails: never.
class CFrameCover
{
public:
    /// Either may be null or empty.
    CFrameCover(const CMaskImage* pMasks, const COverlayImage* pImage) : m_pMasks(pMasks), m_pImage(pImage) {}

    bool IsEmpty() const;
    /// Whether nothing lies over texels of a plane of the frame; the last column and row are inside, and what
    /// lies beyond the plane counts as its edge. Rectangles that take long to look at count as covered.
    bool IsClear(int x0, int y0, int x1, int y1, int nPlaneWidth, int nPlaneHeight) const;

private:
    const CMaskImage* m_pMasks;
    const COverlayImage* m_pImage;
};

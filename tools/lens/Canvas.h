/// \file
/// A picture to draw charts in.
#pragma once

#include "ImageWriter.h"

#include <cstddef>
#include <string>
#include <vector>

/// Units: pixels from the top left, halves in the middles of pixels; colours 0xRRGGBB. Smooth edges. What
/// lies outside is not drawn. Owns: its pixels. Thread: one at a time. Fails: never.
class CCanvas
{
public:
    struct SPoint
    {
        double x = 0.0;
        double y = 0.0;
    };

    /// White.
    CCanvas(int nWidth, int nHeight);

    void Fill(int nLeft, int nTop, int nRight, int nBottom, unsigned int nColor);
    /// Lines from point to point. Dashes and gaps in turn, pixels; none: one line without gaps.
    void Draw(const std::vector<SPoint>& vPoints, double fWidth, unsigned int nColor,
              const std::vector<double>& vDashes = {});
    /// ASCII in the library's font, sixteen pixels high, from its top left corner.
    void Write(double fLeft, double fTop, const std::string& strText, unsigned int nColor);
    static double WidthOf(const std::string& strText);

    /// Belongs to the canvas.
    SPicture Picture() const;

private:
    void Blend(int x, int y, double fCover, unsigned int nColor);
    void Cover(const SPoint& rFrom, const SPoint& rTo, double fWidth, std::vector<double>& rCover) const;
    void WriteChar(double fLeft, double fTop, unsigned char nChar, unsigned int nColor);
    std::size_t IndexOf(int x, int y) const;

    int m_nWidth;
    int m_nHeight;
    std::vector<unsigned char> m_vPixels;
};

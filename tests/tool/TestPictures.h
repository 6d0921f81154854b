/// \file
/// Small pictures for the tool's tests, and a folder that goes away.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

/// A folder of its own, removed with everything in it at the end.
class CTempFolder
{
public:
    CTempFolder();
    ~CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;
    std::string Path(const std::string& strName) const { return (m_oPath / strName).string(); }

private:
    std::filesystem::path m_oPath;
};

using TBytes = std::vector<unsigned char>;

void SaveBytes(const std::string& strPath, const TBytes& vBytes);
TBytes LoadBytes(const std::string& strPath);

/// Red, green, blue of one pixel.
struct SColor
{
    int nRed = 0;
    int nGreen = 0;
    int nBlue = 0;
};

/// Packed R, G, B rows.
struct SRGBPicture
{
    int nWidth = 0;
    int nHeight = 0;
    TBytes vBytes;

    SRGBPicture(int nNewWidth, int nNewHeight);
    void Set(int x, int y, SColor sColor);
    SColor Get(int x, int y) const;
};

/// Smooth, different along both axes, colours far from the ends of their scales.
SRGBPicture MakeGradient(int nWidth, int nHeight);
/// Top left red, top right green, bottom left blue, bottom right white.
SRGBPicture MakeQuarters(int nWidth, int nHeight);

/// The picture in a bare layout ("rgb24", "bgr24", "rgba", "bgra", "gray", "nv12", "nv21", "yuv420p"), full
/// range BT.601, rows of the first plane nStride bytes apart (0: no padding, which is filled with 0xEE).
TBytes MakeRaw(const SRGBPicture& sPicture, const std::string& strFormat, int nStride = 0);

void SavePNG(const std::string& strPath, const SRGBPicture& sPicture);
/// With an alpha channel; nAlpha is that of every pixel.
void SavePNGWithAlpha(const std::string& strPath, const SRGBPicture& sPicture, unsigned char nAlpha);
/// A JPEG with FFmpeg's pixel format of the given name (yuvj420p, yuvj444p, gray).
void SaveJPEG(const std::string& strPath, const SRGBPicture& sPicture, const std::string& strPixelFormat);

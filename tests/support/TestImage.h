/// \file
/// Pictures in memory: comparing, writing, reading single pixels.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// RGBA, 8 bits each, packed rows, top row first.
struct STestImage
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<unsigned char> vPixels;

    STestImage() = default;
    STestImage(int nCols, int nRows)
        : nWidth(nCols), nHeight(nRows),
          vPixels(static_cast<std::size_t>(nCols) * static_cast<std::size_t>(nRows) * 4)
    {}

    unsigned char* At(int x, int y)
    {
        return &vPixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) +
                         static_cast<std::size_t>(x)) *
                        4];
    }
    const unsigned char* At(int x, int y) const { return const_cast<STestImage*>(this)->At(x, y); }
    void Set(int x, int y, int nRed, int nGreen, int nBlue, int nAlpha = 255);
    /// 0xRRGGBBAA.
    unsigned int Word(int x, int y) const;
};

/// A small picture in which no two corners or halves look alike: a gradient with a bright mark at the top
/// left and a dark one at the bottom right.
STestImage AsymmetricPicture(int nWidth, int nHeight);

/// Differences of two pictures of one size, over red, green and blue.
struct SImageDifference
{
    int nMax = 0;
    int nMaxX = 0; ///< where the largest stands
    int nMaxY = 0;
    double fMean = 0.0;
    double fPSNR = 0.0; ///< decibels; 99 for equal pictures
};
SImageDifference CompareImages(const STestImage& sA, const STestImage& sB);

/// Absolute differences, eight times as strong, to look at.
STestImage DifferenceImage(const STestImage& sA, const STestImage& sB);

/// Two pictures beside each other.
STestImage SideBySide(const STestImage& sLeft, const STestImage& sRight);

/// Writes a PNG into the pictures folder of the build tree (made when missing). Returns the path.
std::string WritePicture(const std::string& strName, const STestImage& sImage);

/// Value below which the given share (0..1) of the numbers lies; 0 for none.
double Percentile(std::vector<double> vValues, double fShare);
double Mean(const std::vector<double>& vValues);

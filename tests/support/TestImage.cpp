#include "tests/support/TestImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <numeric>

void STestImage::Set(int x, int y, int nRed, int nGreen, int nBlue, int nAlpha)
{
    unsigned char* pPixel = At(x, y);
    pPixel[0] = static_cast<unsigned char>(nRed);
    pPixel[1] = static_cast<unsigned char>(nGreen);
    pPixel[2] = static_cast<unsigned char>(nBlue);
    pPixel[3] = static_cast<unsigned char>(nAlpha);
}

unsigned int STestImage::Word(int x, int y) const
{
    const unsigned char* pPixel = At(x, y);
    return static_cast<unsigned int>(pPixel[0]) << 24 | static_cast<unsigned int>(pPixel[1]) << 16 |
           static_cast<unsigned int>(pPixel[2]) << 8 | pPixel[3];
}

SImageDifference CompareImages(const STestImage& sA, const STestImage& sB)
{
    SImageDifference sResult;
    if (sA.nWidth != sB.nWidth || sA.nHeight != sB.nHeight) {
        sResult.nMax = 256;
        sResult.fMean = 256.0;
        return sResult;
    }
    double fSum = 0.0;
    double fSquares = 0.0;
    for (int y = 0; y < sA.nHeight; ++y)
        for (int x = 0; x < sA.nWidth; ++x)
            for (int i = 0; i < 3; ++i) {
                const int nDiff = std::abs(sA.At(x, y)[i] - sB.At(x, y)[i]);
                fSum += nDiff;
                fSquares += static_cast<double>(nDiff) * nDiff;
                if (nDiff > sResult.nMax) {
                    sResult.nMax = nDiff;
                    sResult.nMaxX = x;
                    sResult.nMaxY = y;
                }
            }
    const double fCount = 3.0 * sA.nWidth * sA.nHeight;
    sResult.fMean = fSum / fCount;
    sResult.fPSNR = fSquares == 0.0 ? 99.0 : 10.0 * std::log10(255.0 * 255.0 * fCount / fSquares);
    return sResult;
}

STestImage DifferenceImage(const STestImage& sA, const STestImage& sB)
{
    STestImage sResult(sA.nWidth, sA.nHeight);
    for (std::size_t i = 0; i < sA.vPixels.size() && i < sB.vPixels.size(); ++i)
        sResult.vPixels[i] =
            i % 4 == 3
                ? static_cast<unsigned char>(255)
                : static_cast<unsigned char>(std::min(255, 8 * std::abs(sA.vPixels[i] - sB.vPixels[i])));
    return sResult;
}

STestImage SideBySide(const STestImage& sLeft, const STestImage& sRight)
{
    STestImage sResult(sLeft.nWidth + sRight.nWidth + 8, std::max(sLeft.nHeight, sRight.nHeight));
    for (const STestImage* pPart : {&sLeft, &sRight})
        for (int y = 0; y < pPart->nHeight; ++y)
            std::copy_n(pPart->At(0, y), pPart->nWidth * 4,
                        sResult.At(pPart == &sLeft ? 0 : sLeft.nWidth + 8, y));
    return sResult;
}

static void Append32(std::vector<unsigned char>& vBytes, std::uint32_t nValue)
{
    for (int nShift = 24; nShift >= 0; nShift -= 8)
        vBytes.push_back(static_cast<unsigned char>(nValue >> nShift));
}

static std::uint32_t Crc32(const unsigned char* pBytes, std::size_t nCount)
{
    static const std::array<std::uint32_t, 256> TABLE = [] {
        std::array<std::uint32_t, 256> anTable = {};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t nValue = i;
            for (int k = 0; k < 8; ++k)
                nValue = (nValue & 1) != 0 ? 0xEDB88320u ^ (nValue >> 1) : nValue >> 1;
            anTable[i] = nValue;
        }
        return anTable;
    }();
    std::uint32_t nCrc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < nCount; ++i)
        nCrc = TABLE[(nCrc ^ pBytes[i]) & 255] ^ (nCrc >> 8);
    return ~nCrc;
}

static void AppendChunk(std::vector<unsigned char>& vFile, const char* pType,
                        const std::vector<unsigned char>& vData)
{
    Append32(vFile, static_cast<std::uint32_t>(vData.size()));
    const std::size_t nStart = vFile.size();
    vFile.insert(vFile.end(), pType, pType + 4);
    vFile.insert(vFile.end(), vData.begin(), vData.end());
    Append32(vFile, Crc32(&vFile[nStart], vFile.size() - nStart));
}

/// A zlib stream of stored blocks: larger than need be, but it needs no compressor.
static std::vector<unsigned char> StoredStream(const std::vector<unsigned char>& vRaw)
{
    std::vector<unsigned char> vStream = {0x78, 0x01};
    std::uint32_t nA = 1;
    std::uint32_t nB = 0;
    for (const unsigned char nByte : vRaw) {
        nA = (nA + nByte) % 65521;
        nB = (nB + nA) % 65521;
    }
    for (std::size_t nStart = 0; nStart < vRaw.size(); nStart += 65535) {
        const std::size_t nLength = std::min<std::size_t>(65535, vRaw.size() - nStart);
        vStream.push_back(nStart + nLength == vRaw.size() ? 1 : 0);
        for (const std::size_t nWord : {nLength, ~nLength & 0xFFFF}) {
            vStream.push_back(static_cast<unsigned char>(nWord & 255));
            vStream.push_back(static_cast<unsigned char>(nWord >> 8));
        }
        const auto oFirst = vRaw.begin() + static_cast<std::ptrdiff_t>(nStart);
        vStream.insert(vStream.end(), oFirst, oFirst + static_cast<std::ptrdiff_t>(nLength));
    }
    Append32(vStream, nB << 16 | nA);
    return vStream;
}

std::string WritePicture(const std::string& strName, const STestImage& sImage)
{
    std::vector<unsigned char> vRaw;
    vRaw.reserve(sImage.vPixels.size() + static_cast<std::size_t>(sImage.nHeight));
    for (int y = 0; y < sImage.nHeight; ++y) {
        vRaw.push_back(0);
        vRaw.insert(vRaw.end(), sImage.At(0, y), sImage.At(0, y) + sImage.nWidth * 4);
    }
    std::vector<unsigned char> vHeader;
    Append32(vHeader, static_cast<std::uint32_t>(sImage.nWidth));
    Append32(vHeader, static_cast<std::uint32_t>(sImage.nHeight));
    vHeader.insert(vHeader.end(), {8, 6, 0, 0, 0});
    std::vector<unsigned char> vFile = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    AppendChunk(vFile, "IHDR", vHeader);
    AppendChunk(vFile, "IDAT", StoredStream(vRaw));
    AppendChunk(vFile, "IEND", {});

    const std::filesystem::path oFolder = PICTURES_DIR;
    std::filesystem::create_directories(oFolder);
    std::string strPath = (oFolder / (strName + ".png")).string();
    if (std::FILE* pFile = std::fopen(strPath.c_str(), "wb")) {
        std::fwrite(vFile.data(), 1, vFile.size(), pFile);
        std::fclose(pFile);
    }
    return strPath;
}

double Percentile(std::vector<double> vValues, double fShare)
{
    if (vValues.empty())
        return 0.0;
    std::sort(vValues.begin(), vValues.end());
    return vValues[static_cast<std::size_t>(fShare * static_cast<double>(vValues.size() - 1))];
}

double Mean(const std::vector<double>& vValues)
{
    return vValues.empty()
               ? 0.0
               : std::accumulate(vValues.begin(), vValues.end(), 0.0) / static_cast<double>(vValues.size());
}

STestImage AsymmetricPicture(int nWidth, int nHeight)
{
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const bool bMark = x < nWidth / 4 && y < nHeight / 4;
            const bool bDark = x >= nWidth - nWidth / 4 && y >= nHeight - nHeight / 4;
            if (bMark || bDark)
                sImage.Set(x, y, bMark ? 250 : 5, bMark ? 240 : 10, bMark ? 30 : 20);
            else
                sImage.Set(x, y, 40 + 160 * x / nWidth, 40 + 160 * y / nHeight, 90);
        }
    return sImage;
}

// lumor-difference: what differs between two pictures of one size, amplified, and how much it is.
#include "FFmpegHandles.h"
#include "FileIO.h"
#include "ImageReader.h"
#include "ImageWriter.h"
#include "OptionValues.h"
#include "ToolError.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

/// The colours of both, apart from each other, times the factor. BGRA rows.
struct SDifference
{
    std::vector<unsigned char> vRows;
    int nLargest = 0;
    double fMean = 0.0;
};

SDifference Compare(const SFrame& sFirst, const SFrame& sSecond, int nFactor)
{
    SDifference sResult;
    double fSum = 0.0;
    for (int y = 0; y < sFirst.nHeight; y++) {
        const unsigned char* pFirst =
            sFirst.avPlanes[0].data() + static_cast<std::ptrdiff_t>(y) * sFirst.nStride;
        const unsigned char* pSecond =
            sSecond.avPlanes[0].data() + static_cast<std::ptrdiff_t>(y) * sSecond.nStride;
        for (int x = 0; x < sFirst.nWidth; x++, pFirst += 4, pSecond += 4) {
            for (const int k : {2, 1, 0}) {
                const int nApart = std::abs(pFirst[k] - pSecond[k]);
                sResult.nLargest = std::max(sResult.nLargest, nApart);
                fSum += nApart;
                sResult.vRows.push_back(static_cast<unsigned char>(std::min(nApart * nFactor, 255)));
            }
            sResult.vRows.push_back(255);
        }
    }
    sResult.fMean = fSum / (3.0 * sFirst.nWidth * sFirst.nHeight);
    return sResult;
}

int Run(int nArguments, const char* const* ppArguments)
{
    if (nArguments != 5)
        ThrowUsage("usage: lumor-difference OUTPUT.png PICTURE PICTURE FACTOR");
    const int nFactor = ReadInt("FACTOR", ppArguments[4], 1, 255, "");
    av_log_set_level(AV_LOG_QUIET);
    const SFrame sFirst = ReadImageRGBA(ppArguments[2]);
    const SFrame sSecond = ReadImageRGBA(ppArguments[3]);
    if (sFirst.nWidth != sSecond.nWidth || sFirst.nHeight != sSecond.nHeight)
        ThrowFailure("the pictures differ in size; give two of one size");
    const SDifference sResult = Compare(sFirst, sSecond, nFactor);
    SPicture sPicture;
    sPicture.pPixels = sResult.vRows.data();
    sPicture.nWidth = sFirst.nWidth;
    sPicture.nHeight = sFirst.nHeight;
    sPicture.nStride = sFirst.nWidth * 4;
    const std::vector<unsigned char> vBytes = EncodePicture(sPicture, GetOutputKind(ppArguments[1]));
    WriteFile(ppArguments[1], vBytes.data(), vBytes.size());
    std::printf("largest difference %d of 255, mean %.3f\n", sResult.nLargest, sResult.fMean);
    return EXIT_DONE;
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    try {
        return Run(nArguments, ppArguments);
    } catch (const CToolError& oError) {
        std::fprintf(stderr, "lumor-difference: %s\n", oError.what());
        return oError.GetStatus();
    } catch (const std::exception& oError) {
        std::fprintf(stderr, "lumor-difference: %s\n", oError.what());
    }
    return EXIT_FAILED;
}

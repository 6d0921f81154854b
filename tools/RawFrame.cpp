#include "RawFrame.h"

#include "FileIO.h"
#include "ToolError.h"

#include <cstddef>

std::uint64_t GetRawFrameBytes(const SRawLayout& sLayout)
{
    const auto nStride = static_cast<std::uint64_t>(sLayout.nStride);
    const auto nHeight = static_cast<std::uint64_t>(sLayout.sSize.nHeight);
    const std::uint64_t nFirstPlane = nStride * nHeight;
    switch (sLayout.nFormat) {
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
    case IMAGE_FORMAT_YUV420P:
        // Two planes of half rows take what one plane of interleaved rows takes.
        return nFirstPlane + (nStride + 1) / 2 * 2 * ((nHeight + 1) / 2);
    default:
        return nFirstPlane;
    }
}

SFrame ReadRawFrame(const std::string& strPath, const SRawLayout& sLayout)
{
    const CFile pFile = OpenForReading(strPath);
    const std::uintmax_t nActual = GetFileBytes(strPath);
    const std::uint64_t nExpected = GetRawFrameBytes(sLayout);
    if (nActual != nExpected)
        ThrowFailure(strPath + ": holds " + std::to_string(nActual) + " bytes, but --raw describes " +
                     std::to_string(nExpected) + "; check format, size and stride");

    SFrame sFrame;
    sFrame.Allocate(sLayout.nFormat, sLayout.sSize.nWidth, sLayout.sSize.nHeight, sLayout.nStride);
    for (int i = 0; i < sFrame.GetPlaneCount(); i++) {
        // An odd stride of the first plane was rounded up in memory; chroma rows are whole in both.
        const auto nMemoryStride = static_cast<std::size_t>(sFrame.GetPlaneStride(i));
        const std::size_t nFileStride = i == 0 ? static_cast<std::size_t>(sLayout.nStride) : nMemoryStride;
        for (int nRow = 0; nRow < sFrame.GetPlaneRows(i); nRow++) {
            unsigned char* pRow = sFrame.avPlanes[static_cast<std::size_t>(i)].data() +
                                  static_cast<std::size_t>(nRow) * nMemoryStride;
            if (std::fread(pRow, 1, nFileStride, pFile.get()) != nFileStride)
                ThrowFailure(strPath + ": cannot be read to its end; check the file");
        }
    }
    return sFrame;
}

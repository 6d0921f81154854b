// Bytes to descriptions of raw files, as the tool's --raw takes them, and to files that are as long as told,
// shorter or longer.
#include "FuzzBytes.h"
#include "FuzzSupport.h"

#include "OptionValues.h"
#include "RawFrame.h"
#include "ToolError.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

// Longer frames are described only.
static const std::uint64_t MOST_BYTES = 1U << 20;

/// FORMAT:WxH[:STRIDE], mostly with all its parts.
static std::string AnyDescription(CFuzzBytes& rBytes)
{
    static const char* const FORMATS[] = {"nv12",  "nv21", "yuv420p", "rgb24",
                                          "bgr24", "rgba", "bgra",    "gray8"};
    const unsigned int nKind = rBytes.Byte();
    std::string strText;
    if (nKind % 4 != 3) {
        strText = FORMATS[rBytes.Byte() % std::size(FORMATS)];
        strText += ":" + std::to_string(rBytes.Int()) + "x" + std::to_string(rBytes.Int());
        if (nKind % 4 == 2)
            strText += ":" + std::to_string(rBytes.Int());
    }
    if (nKind % 4 == 3 || nKind / 4 % 8 == 7) {
        for (const unsigned char nByte : rBytes.Block(20))
            strText += static_cast<char>(nByte);
    }
    return strText;
}

/// A file in memory, all zeros.
class CMemoryFile
{
public:
    explicit CMemoryFile(std::uint64_t nBytes) : m_nFile(memfd_create("frame", 0))
    {
        Require(m_nFile >= 0 && ftruncate(m_nFile, static_cast<off_t>(nBytes)) == 0, "a file in memory");
    }
    ~CMemoryFile() { close(m_nFile); }
    CMemoryFile(const CMemoryFile&) = delete;
    CMemoryFile& operator=(const CMemoryFile&) = delete;
    std::string Path() const { return "/proc/self/fd/" + std::to_string(m_nFile); }

private:
    int m_nFile;
};

/// Bytes of a frame, counted once more.
static std::uint64_t FrameBytes(const SRawLayout& rLayout)
{
    const auto nStride = static_cast<std::uint64_t>(rLayout.nStride);
    const auto nRows = static_cast<std::uint64_t>(rLayout.sSize.nHeight);
    std::uint64_t nBytes = nStride * nRows;
    if (rLayout.nFormat == IMAGE_FORMAT_NV12 || rLayout.nFormat == IMAGE_FORMAT_NV21 ||
        rLayout.nFormat == IMAGE_FORMAT_YUV420P)
        nBytes += (nStride + nStride % 2) * (nRows / 2 + nRows % 2);
    return nBytes;
}

static void CheckFrame(SFrame& rFrame, const SRawLayout& rLayout)
{
    const SImageProperties sImage = rFrame.Describe();
    Require(sImage.nWidth == rLayout.sSize.nWidth && sImage.nHeight == rLayout.sSize.nHeight &&
                sImage.nFormat == rLayout.nFormat && sImage.nStride >= rLayout.nStride,
            "the frame is what was described");
    const unsigned char* const apPlanes[] = {sImage.pPlane0, sImage.pPlane1, sImage.pPlane2};
    for (int i = 0; i < rFrame.GetPlaneCount(); ++i) {
        const std::size_t nBytes = static_cast<std::size_t>(rFrame.GetPlaneStride(i)) *
                                   static_cast<std::size_t>(rFrame.GetPlaneRows(i));
        const volatile unsigned char* pLast = apPlanes[i] + nBytes - 1;
        Require(*pLast == 0, "a plane is whole");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const CFuzzInput oInput;
    CFuzzBytes oBytes(pData, nSize);
    SRawLayout sLayout;
    try {
        sLayout = ReadRawLayout(AnyDescription(oBytes));
    } catch (const CToolError& rError) {
        Require(rError.GetStatus() == EXIT_USAGE, "a description is refused as such");
        return 0;
    }
    const std::uint64_t nBytes = FrameBytes(sLayout);
    Require(nBytes > 0 && GetRawFrameBytes(sLayout) == nBytes, "the bytes of a frame");
    if (nBytes > MOST_BYTES)
        return 0;
    const unsigned int nKind = oBytes.Byte() % 4;
    const std::uint64_t nFile = nKind < 2 ? nBytes : nKind == 2 ? oBytes.Byte() : nBytes + oBytes.Byte();
    const CMemoryFile oFile(nFile);
    try {
        SFrame sFrame = ReadRawFrame(oFile.Path(), sLayout);
        Require(nFile == nBytes, "files of another length are refused");
        CheckFrame(sFrame, sLayout);
    } catch (const CToolError& rError) {
        Require(nFile != nBytes && rError.GetStatus() == EXIT_FAILED, "files of the right length are read");
    }
    return 0;
}

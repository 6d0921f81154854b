// Bytes to descriptions of frames, possible and impossible ones, whose planes are exactly as long as they
// tell: to the desktop class, which judges them, and to the base class, which draws what it can.
#include "FuzzBytes.h"
#include "FuzzScene.h"
#include "FuzzSupport.h"
#include "GLWatch.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

static const int MOST_FRAMES = 4;
// Longer frames come without their planes.
static const std::size_t MOST_BYTES = 1U << 21;

/// Rows as long as the width needs, longer, or of any length.
static int AnyStride(CFuzzBytes& rBytes, const SImageProperties& rImage)
{
    const long long nTight = static_cast<long long>(rImage.nWidth) * FramePixelBytes(rImage.nFormat);
    const unsigned int nKind = rBytes.Byte();
    if (nKind % 4 == 3 || nTight < 1 || nTight > 100000)
        return rBytes.Int();
    return static_cast<int>(nTight) + (nKind % 4 == 0 ? 0 : static_cast<int>(nKind / 4) - 2);
}

static std::unique_ptr<CFuzzFrame> AnyFrame(CFuzzBytes& rBytes)
{
    static const int FORMATS[] = {5, 6, 7, 0, 4, 8, 9, 10, 1};
    static const int SPACES[] = {0, 1, 2, 3, 4, 5};
    static const int RANGES[] = {0, 1, 2, 3};
    auto pFrame = std::make_unique<CFuzzFrame>();
    SImageProperties& rImage = pFrame->sImage;
    rImage.nFormat = rBytes.OneOf<int>(FORMATS);
    rImage.nWidth = rBytes.Int();
    rImage.nHeight = rBytes.Int();
    rImage.nStride = AnyStride(rBytes, rImage);
    rImage.eYUVSpace = rBytes.OneOf<EYUVSpace>(SPACES);
    rImage.eYUVRange = rBytes.OneOf<EYUVRange>(RANGES);
    pFrame->Allocate(MOST_BYTES);
    const unsigned int nMissing = rBytes.Byte();
    if (nMissing % 8 == 7)
        *(nMissing / 8 % 3 == 0   ? &rImage.pPlane0
          : nMissing / 8 % 3 == 1 ? &rImage.pPlane1
                                  : &rImage.pPlane2) = nullptr;
    return pFrame;
}

/// What the desktop class promises to draw.
static bool IsGood(const SImageProperties& rImage)
{
    const unsigned char* const apPlanes[] = {rImage.pPlane0, rImage.pPlane1, rImage.pPlane2};
    if (rImage.nWidth < 2 || rImage.nHeight < 2 || rImage.nWidth > 16384 || rImage.nHeight > 16384 ||
        PlaneBytes(rImage, 0) == 0 || rImage.nStride < rImage.nWidth * FramePixelBytes(rImage.nFormat) ||
        rImage.nStride > 262144)
        return false;
    for (int i = 0; i < 3; ++i) {
        if (PlaneBytes(rImage, i) != 0 && apPlanes[i] == nullptr)
            return false;
    }
    return true;
}

// First bytes from here on choose the processor engine; no input that was kept earlier begins with one.
static const unsigned int FIRST_PROCESSOR_BYTE = 0xE8;
static const unsigned int LAST_PROCESSOR_BYTE = 0xEF;

/// The same frames to the processor engine, which reads their planes with every picture.
static void PlayWithProcessor(CFuzzBytes& rBytes)
{
    const std::unique_ptr<CDewarper> pDewarper = CreateDewarper(ENGINE_CPU, 24, 16);
    pDewarper->SetViewType(static_cast<EViewType>(rBytes.Byte() % 10));
    pDewarper->SetInterpolationType(rBytes.Bool() ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
    std::unique_ptr<CFuzzFrame> pFrame;
    for (int i = 0; i < MOST_FRAMES && !rBytes.IsEmpty(); ++i) {
        std::unique_ptr<CFuzzFrame> pNew = AnyFrame(rBytes);
        const std::unique_ptr<SQPInfo> pInfo = MakeQPInfo(rBytes);
        const unsigned int nLines = nLogLines;
        const bool bTaken = pDewarper->SetTexture(&pNew->sImage, rBytes.Bool(), pInfo.get(), 1);
        if (pInfo == nullptr)
            Require(bTaken == IsGood(pNew->sImage), "good frames are taken, others are not");
        Require(bTaken || nLogLines == nLines + 1, "a frame is refused with one log line");
        if (bTaken)
            pFrame = std::move(pNew);
        DrawAndCheck(*pDewarper, true, pFrame != nullptr);
        DrawAndCheck(*pDewarper, false, pFrame != nullptr);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const CFuzzInput oInput;
    CFuzzBytes oBytes(pData, nSize);
    const unsigned int nStart = oBytes.Byte();
    BeginGLInput(nStart % 8 != 7);
    if (nStart >= FIRST_PROCESSOR_BYTE && nStart <= LAST_PROCESSOR_BYTE) {
        PlayWithProcessor(oBytes);
        return 0;
    }
    CCustomGPUDewarperOffscreen oDewarper;
    Require(oDewarper.InitGL(24, 16) && oDewarper.StartGL(), "a context");
    oDewarper.SetViewType((nStart & 16) != 0 ? static_cast<EViewType>(oBytes.Byte() % 10) : VIEW_FISHEYE);
    std::unique_ptr<CFuzzFrame> pFrame;
    bool bGood = false;
    for (int i = 0; i < MOST_FRAMES && !oBytes.IsEmpty(); ++i) {
        std::unique_ptr<CFuzzFrame> pNew = AnyFrame(oBytes);
        const std::unique_ptr<SQPInfo> pInfo = MakeQPInfo(oBytes);
        const unsigned int nLines = nLogLines;
        const bool bBase = oBytes.Byte() % 4 == 3;
        const bool bTaken =
            bBase ? oDewarper.CCustomGPUDewarper::SetTexture(&pNew->sImage, false, pInfo.get(), 1)
                  : oDewarper.SetTexture(&pNew->sImage, oBytes.Bool(), pInfo.get(), 1);
        if (!bBase && pInfo == nullptr)
            Require(bTaken == IsGood(pNew->sImage), "good frames are taken, others are not");
        Require(bTaken || nLogLines == nLines + 1, "a frame is refused with one log line");
        if (bTaken) {
            bGood = !bBase;
            pFrame = std::move(pNew);
        }
        if (DrawAndCheck(oDewarper, true, bGood))
            pFrame.reset(); // the planes may go as soon as they have been drawn
    }
    DrawAndCheck(oDewarper, true, bGood);
    oDewarper.StopGL();
    Require(LivingGLNames() == 0, "nothing is left behind");
    return 0;
}

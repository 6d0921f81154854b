// The order of calls; frames, target, start and stop.
#include "tests/gl/state/StateCalls.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

std::string NumberWords(float fNumber)
{
    if (std::isnan(fNumber))
        return "NAN";
    if (std::isinf(fNumber))
        return fNumber > 0.0f ? "INFINITY" : "-INFINITY";
    char acNumber[32];
    std::snprintf(acNumber, sizeof acNumber, "%.9g", static_cast<double>(fNumber));
    return acNumber;
}

/// Gives a frame's planes a picture in which every place looks different.
static void PaintFrame(CFuzzFrame& rFrame, unsigned int nShade)
{
    unsigned char* const apPlanes[] = {rFrame.sImage.pPlane0, rFrame.sImage.pPlane1, rFrame.sImage.pPlane2};
    for (int nPlane = 0; nPlane < 3; ++nPlane) {
        const std::size_t nStride = static_cast<std::size_t>(rFrame.sImage.nStride) /
                                    (nPlane > 0 && rFrame.sImage.nFormat == IMAGE_FORMAT_YUV420P ? 2U : 1U);
        const std::size_t nBytes = PlaneBytes(rFrame.sImage, nPlane);
        for (std::size_t i = 0; i < nBytes; ++i) {
            const std::size_t x = i % nStride;
            const std::size_t y = i / nStride;
            apPlanes[nPlane][i] = static_cast<unsigned char>(x * 5 + y * 3 + (x / 4 + y / 4) % 2 * 60 +
                                                             nShade * 37 + static_cast<unsigned int>(nPlane));
        }
    }
}

/// Mostly small; now and then of a size that tells its lens.
static void ChooseSize(CFuzzBytes& rBytes, SImageProperties& rImage)
{
    static const int LENS_SIZES[][2] = {{528, 480}, {512, 512}, {672, 600}};
    static const int FORMATS[] = {IMAGE_FORMAT_NV12,  IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32,
                                  IMAGE_FORMAT_RGB24, IMAGE_FORMAT_BGR24,   IMAGE_FORMAT_BGRA32,
                                  IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_NV21};
    rImage.nFormat = FORMATS[rBytes.Byte() % std::size(FORMATS)];
    const unsigned int nKind = rBytes.Byte();
    if (nKind < 32) {
        rImage.nFormat = IMAGE_FORMAT_GRAY8;
        rImage.nWidth = LENS_SIZES[nKind % 3][0];
        rImage.nHeight = LENS_SIZES[nKind % 3][1];
    } else if (nKind < 160) {
        rImage.nWidth = rImage.nHeight = 32;
    } else {
        rImage.nWidth = rBytes.Between(2, 48);
        rImage.nHeight = rBytes.Between(2, 48);
    }
}

static std::shared_ptr<CFuzzFrame> ReadFrame(CFuzzBytes& rBytes, std::string& strWords)
{
    static const int SPACES[] = {0, 1, 2, 3, 4};
    static const int RANGES[] = {0, 1, 2};
    auto pFrame = std::make_shared<CFuzzFrame>();
    SImageProperties& rImage = pFrame->sImage;
    ChooseSize(rBytes, rImage);
    rImage.nStride = rImage.nWidth * FramePixelBytes(rImage.nFormat);
    if (rBytes.Byte() % 4 == 0)
        rImage.nStride += 8;
    rImage.eYUVSpace = rBytes.OneOf<EYUVSpace>(SPACES);
    rImage.eYUVRange = rBytes.OneOf<EYUVRange>(RANGES);
    const unsigned int nShade = rBytes.Byte();
    pFrame->Allocate(4U << 20);
    PaintFrame(*pFrame, nShade);
    strWords = "frame " + std::to_string(rImage.nWidth) + " x " + std::to_string(rImage.nHeight) +
               ", format " + std::to_string(rImage.nFormat) + ", stride " + std::to_string(rImage.nStride) +
               ", space " + std::to_string(rImage.eYUVSpace) + ", range " + std::to_string(rImage.eYUVRange) +
               ", shade " + std::to_string(nShade);
    return pFrame;
}

static std::shared_ptr<SQPInfo> ReadQPInfo(CFuzzBytes& rBytes, std::string& strWords)
{
    const unsigned int nKind = rBytes.Byte();
    if (nKind < 224)
        return nullptr;
    auto pInfo = std::make_shared<SQPInfo>();
    if (nKind > 244) {
        strWords += ", empty macroblock information";
        return pInfo;
    }
    pInfo->nWidth = pInfo->nHeight = 1 + static_cast<int>(nKind % 3);
    pInfo->nStride = 4;
    const std::size_t nEntries = static_cast<std::size_t>(pInfo->nHeight) * 4;
    pInfo->pQP = new unsigned char[nEntries];
    std::fill_n(pInfo->pQP, nEntries, static_cast<unsigned char>(nKind / 6));
    if (nKind % 2 == 0) {
        pInfo->pMBType = new unsigned char[nEntries];
        std::fill_n(pInfo->pMBType, nEntries, static_cast<unsigned char>(nKind % 5));
    }
    strWords += ", macroblocks " + std::to_string(pInfo->nWidth) + " x " + std::to_string(pInfo->nHeight) +
                (pInfo->pMBType != nullptr ? " with types" : "") + ", value " + std::to_string(nKind / 6);
    return pInfo;
}

SStateCall FrameCall(CFuzzBytes& rBytes)
{
    std::string strWords;
    const std::shared_ptr<CFuzzFrame> pFrame = ReadFrame(rBytes, strWords);
    const std::shared_ptr<SQPInfo> pQP = ReadQPInfo(rBytes, strWords);
    const bool bGain = rBytes.Byte() % 8 == 7;
    if (bGain)
        strWords += ", with gain";
    return MakeCall(strWords, [=](CStatePlayer& rPlayer) { rPlayer.GiveFrame(pFrame, pQP, bGain, true); });
}

SStateCall BadFrameCall(CFuzzBytes& rBytes)
{
    std::string strWords;
    const std::shared_ptr<CFuzzFrame> pFrame = ReadFrame(rBytes, strWords);
    SImageProperties& rImage = pFrame->sImage;
    switch (rBytes.Byte() % 4) {
    case 0:
        rImage.nWidth = 0;
        break;
    case 1:
        rImage.nHeight = 16385;
        break;
    case 2:
        rImage.nStride = rImage.nWidth - 1;
        break;
    default:
        rImage.pPlane0 = nullptr;
        break;
    }
    return MakeCall("bad " + strWords,
                    [=](CStatePlayer& rPlayer) { rPlayer.GiveFrame(pFrame, nullptr, false, false); });
}

SStateCall DrawCall(CFuzzBytes& rBytes)
{
    const bool bCompare = rBytes.Bool();
    return MakeCall(bCompare ? "draw and compare" : "draw",
                    [=](CStatePlayer& rPlayer) { rPlayer.Draw(bCompare); });
}

SStateCall TargetCall(CFuzzBytes& rBytes)
{
    static const int SIZES[][2] = {{64, 48}, {96, 64}, {120, 160}, {48, 96}, {33, 21},   {160, 40},
                                   {64, 64}, {64, 48}, {0, 48},    {64, -1}, {16385, 48}};
    const auto& anSize = SIZES[rBytes.Byte() % std::size(SIZES)];
    const int nWidth = anSize[0];
    const int nHeight = anSize[1];
    return MakeCall("InitGL(" + std::to_string(nWidth) + ", " + std::to_string(nHeight) + ")",
                    [=](CStatePlayer& rPlayer) { rPlayer.SetTarget(nWidth, nHeight); });
}

SStateCall RestartCall(CFuzzBytes& rBytes)
{
    switch (rBytes.Byte() % 4) {
    case 0:
        return MakeCall("StartGL()", [](CStatePlayer& rPlayer) { rPlayer.Start(); });
    case 1:
        return MakeCall("StopGL()", [](CStatePlayer& rPlayer) { rPlayer.Stop(); });
    default:
        return MakeCall("StopGL(), StartGL()", [](CStatePlayer& rPlayer) {
            rPlayer.Stop();
            rPlayer.Start();
        });
    }
}

SStateCall FreeCall(CFuzzBytes& rBytes)
{
    const bool bReinitialize = rBytes.Bool();
    return MakeCall(bReinitialize ? "ReinitializeOpenGLObjects()" : "FreeOpenGLObjects()",
                    [=](CStatePlayer& rPlayer) { rPlayer.FreeObjects(bReinitialize); });
}

std::vector<SStateCall> ReadStateCalls(CFuzzBytes& rBytes, int nMost)
{
    using FRead = SStateCall (*)(CFuzzBytes&);
    static const FRead KINDS[] = {
        FrameCall,  TargetCall, RestartCall,      FreeCall,          ViewCall,        MountCall,
        LensCall,   ColourCall, WallCall,         MoveCall,          MouseCall,       MaskCall,
        StringCall, DrawCall,   InputOverlayCall, OutputOverlayCall, BadFrameCall,    ViewCall,
        WallCall,   MoveCall,   DrawCall,         MountCall,         OrientationCall, DrawCall,
    };
    // Some kinds only in one sequence: few kinds that meet often show more than all that meet seldom.
    const unsigned int nChoice = rBytes.Word();
    const unsigned int nLeftOut = nChoice & 0x5FDFFF;
    // What was asked for leaves its marks with a frame: mostly, one is drawn after every call.
    const bool bDrawOften = nChoice >> 30 != 0;
    std::vector<FRead> vKinds;
    for (unsigned int i = 0; i < std::size(KINDS); ++i)
        if ((nLeftOut >> i & 1U) == 0)
            vKinds.push_back(KINDS[i]);
    std::vector<SStateCall> vCalls;
    vCalls.push_back(FrameCall(rBytes));
    while (!rBytes.IsEmpty() && static_cast<int>(vCalls.size()) < nMost) {
        vCalls.push_back(vKinds[rBytes.Byte() % vKinds.size()](rBytes));
        if (bDrawOften)
            vCalls.push_back(MakeCall("draw", [](CStatePlayer& rPlayer) { rPlayer.Draw(false); }));
    }
    vCalls.push_back(MakeCall("draw and compare", [](CStatePlayer& rPlayer) { rPlayer.Draw(true); }));
    return vCalls;
}

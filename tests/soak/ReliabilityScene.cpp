#include "tests/soak/ReliabilityScene.h"

#include <cstdlib>
#include <limits>

template <class D>
static void SwitchOn(D& oDewarper, int nTargetWidth, int nTargetHeight)
{
    const std::size_t nPixels =
        static_cast<std::size_t>(nTargetWidth) * static_cast<std::size_t>(nTargetHeight);
    std::vector<unsigned char> vOverlay(nPixels * 4, 0);
    for (std::size_t i = 0; i < nPixels / 8; ++i) {
        vOverlay[4 * i] = 200;
        vOverlay[4 * i + 3] = 160;
    }
    oDewarper.SetOutputOverlay(vOverlay.data(), nTargetWidth, nTargetHeight, 0, {});
    SGPolygon sMask;
    sMask.vPoints = {{60, 60}, {200, 70}, {180, 190}, {70, 160}};
    sMask.nColor = 0x208040FF;
    oDewarper.SetMaskPolygons({sMask});
    SGPUString sText;
    sText.strText = "12:00:00";
    sText.nX = 8;
    sText.nY = nTargetHeight - 24;
    sText.nHeight = 16;
    sText.nColor = 0xFFFFFFFF;
    oDewarper.SetStrings({sText});
}

namespace
{

float AnyAngle(std::mt19937& oRandom)
{
    const float aSpecial[] = {0.0f,
                              -0.0f,
                              180.0f,
                              -180.0f,
                              360.0f,
                              1e10f,
                              -1e30f,
                              std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::denorm_min(),
                              std::numeric_limits<float>::max()};
    const std::size_t nChoice = oRandom() % 40;
    if (nChoice < std::size(aSpecial))
        return aSpecial[nChoice];
    return std::uniform_real_distribution<float>(-400.0f, 400.0f)(oRandom);
}

int AnyInt(std::mt19937& oRandom, int nLow, int nHigh)
{
    if (oRandom() % 50 == 0)
        return static_cast<int>(oRandom());
    return std::uniform_int_distribution<int>(nLow, nHigh)(oRandom);
}

/// Every other time none: the one view comes back.
std::vector<SPane> AnyPanes(std::mt19937& oRandom)
{
    std::vector<SPane> vPanes(oRandom() % 2 == 0 ? 0 : oRandom() % 5);
    for (SPane& rPane : vPanes) {
        rPane.sRect = {AnyInt(oRandom, 0, 30), AnyInt(oRandom, 0, 30), AnyInt(oRandom, 1, 40),
                       AnyInt(oRandom, 1, 40)};
        rPane.eView = static_cast<EViewType>(AnyInt(oRandom, 1, 9));
        if (oRandom() % 2 == 0)
            rPane.fPan = AnyAngle(oRandom);
        rPane.fTilt = AnyAngle(oRandom);
    }
    return vPanes;
}

template <class D>
void RandomSetting(D& oDewarper, std::mt19937& oRandom)
{
    static const int LENSES[] = {-2, -1, 0, 215, 239, 418, 419, 7};
    static const int MOUNTS[] = {0, 90, -90, 1000, 45};
    switch (oRandom() % 12) {
    case 0:
        oDewarper.SetViewType(static_cast<EViewType>(AnyInt(oRandom, 0, 10)));
        break;
    case 1:
        oDewarper.SetMountType(static_cast<EMountType>(MOUNTS[oRandom() % 5]));
        break;
    case 2:
        oDewarper.SetLensType(static_cast<ELensType>(LENSES[oRandom() % 8]));
        break;
    case 3:
        oDewarper.SetInterpolationType(static_cast<EInterpolationType>(AnyInt(oRandom, 0, 2)));
        break;
    case 4:
        oDewarper.SetYUVparams(static_cast<EYUVSpace>(AnyInt(oRandom, 0, 5)),
                               static_cast<EYUVRange>(AnyInt(oRandom, 0, 3)));
        break;
    case 5:
        oDewarper.SetMountTilt(AnyAngle(oRandom));
        break;
    case 6:
        oDewarper.SetStrictTiltLimits(oRandom() % 2 == 0);
        break;
    case 7:
        oDewarper.SetRotation(oRandom() % 8 == 0 ? AnyInt(oRandom, -400, 400)
                                                 : static_cast<int>(oRandom() % 5) * 90);
        break;
    case 8:
        oDewarper.SetFlip(oRandom() % 2 == 0, oRandom() % 2 == 0);
        break;
    case 9:
        oDewarper.SetPanes(AnyPanes(oRandom));
        break;
    case 10:
        oDewarper.SetPaneGap(AnyInt(oRandom, -1, 9), static_cast<unsigned int>(oRandom()));
        oDewarper.SelectPane(AnyInt(oRandom, -1, 4));
        oDewarper.GetPanes();
        break;
    default:
        oDewarper.SetEyeDistance(AnyAngle(oRandom));
        break;
    }
}

template <class D>
void RandomMove(D& oDewarper, std::mt19937& oRandom)
{
    switch (oRandom() % 7) {
    case 0:
        oDewarper.AbsolutePTZ(AnyAngle(oRandom), AnyAngle(oRandom), AnyAngle(oRandom));
        break;
    case 1:
        oDewarper.RelativePTZ(AnyAngle(oRandom), AnyAngle(oRandom), AnyAngle(oRandom));
        break;
    case 2:
        oDewarper.AnaloguePTZ(AnyAngle(oRandom) / 400.0f, AnyAngle(oRandom) / 400.0f, 0.0f);
        break;
    case 3:
        oDewarper.OnMouseDown(AnyInt(oRandom, 0, 300), AnyInt(oRandom, 0, 300));
        break;
    case 4:
        oDewarper.OnMouseMove(AnyInt(oRandom, 0, 300), AnyInt(oRandom, 0, 300), oRandom() % 4 == 0,
                              oRandom() % 4 == 0);
        break;
    case 5:
        oDewarper.OnMouseUp();
        break;
    default:
        oDewarper.OnMouseWheel(AnyAngle(oRandom));
        break;
    }
}

template <class D>
void RandomOverlay(D& oDewarper, std::mt19937& oRandom)
{
    static unsigned char anPixels[64 * 64 * 4];
    switch (oRandom() % 5) {
    case 0:
        oDewarper.SetInputOverlay(oRandom() % 3 == 0 ? nullptr : anPixels, 64, 64, 0);
        break;
    case 1: {
        const SGRect sRect{AnyInt(oRandom, -10, 70), AnyInt(oRandom, -10, 70), AnyInt(oRandom, -1, 40),
                           AnyInt(oRandom, -1, 40)};
        oDewarper.SetOutputOverlay(oRandom() % 3 == 0 ? nullptr : anPixels, 64, 64, 0, {sRect});
        break;
    }
    case 2: {
        std::vector<SGPolygon> vMasks(oRandom() % 3);
        for (SGPolygon& rMask : vMasks) {
            rMask.nColor = static_cast<unsigned int>(oRandom());
            for (std::size_t n = oRandom() % 9; n > 0; --n)
                rMask.vPoints.push_back({AnyInt(oRandom, -20, 300), AnyInt(oRandom, -20, 300)});
        }
        oDewarper.SetMaskPolygons(std::move(vMasks));
        break;
    }
    default: {
        std::vector<SGPUString> vStrings(oRandom() % 4);
        for (SGPUString& rString : vStrings) {
            for (std::size_t n = oRandom() % 20; n > 0; --n)
                rString.strText.push_back(static_cast<char>(oRandom()));
            rString.nX = AnyInt(oRandom, -50, 200);
            rString.nY = AnyInt(oRandom, -50, 200);
            rString.nHeight = AnyInt(oRandom, -1, 64);
            rString.nHAlign = AnyInt(oRandom, 0, 3);
            rString.nVRef = AnyInt(oRandom, 0, 3);
        }
        oDewarper.SetStrings(std::move(vStrings));
        break;
    }
    }
}

} // namespace

template <class D>
static void RandomCall(D& oDewarper, std::mt19937& oRandom)
{
    switch (oRandom() % 4) {
    case 0:
        RandomOverlay(oDewarper, oRandom);
        break;
    case 1:
        RandomSetting(oDewarper, oRandom);
        break;
    default:
        RandomMove(oDewarper, oRandom);
        break;
    }
}

void SwitchEverythingOn(CCustomGPUDewarper& oDewarper, int nTargetWidth, int nTargetHeight)
{
    SwitchOn(oDewarper, nTargetWidth, nTargetHeight);
}

void SwitchEverythingOn(CDewarper& oDewarper, int nTargetWidth, int nTargetHeight)
{
    SwitchOn(oDewarper, nTargetWidth, nTargetHeight);
}

void RandomControlCall(CCustomGPUDewarper& oDewarper, std::mt19937& oRandom)
{
    RandomCall(oDewarper, oRandom);
}

void RandomControlCall(CDewarper& oDewarper, std::mt19937& oRandom)
{
    RandomCall(oDewarper, oRandom);
}

bool IsLongRun()
{
    return std::getenv("LUMOR_SOAK_SECONDS") != nullptr;
}

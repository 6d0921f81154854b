// What to show and where to look.
#include "tests/gl/state/StateCalls.h"

SStateCall ViewCall(CFuzzBytes& rBytes)
{
    // The cheap views more often than the virtual camera, whose mesh is large.
    static const int VIEWS[] = {3, 4, 9, 2, 4, 5, 6, 7, 8, 1, 0, 4};
    const EViewType eView = rBytes.OneOf<EViewType>(VIEWS);
    return MakeCall("SetViewType(" + std::to_string(eView) + ")", [=](CStatePlayer& rPlayer) {
        rPlayer.With([&](auto& d) { return d.SetViewType(eView); });
    });
}

SStateCall MountCall(CFuzzBytes& rBytes)
{
    static const int MOUNTS[] = {0, 90, 0, -90, 0, 1000};
    const EMountType eMount = rBytes.OneOf<EMountType>(MOUNTS);
    return MakeCall("SetMountType(" + std::to_string(eMount) + ")", [=](CStatePlayer& rPlayer) {
        rPlayer.With([&](auto& d) { return d.SetMountType(eMount); });
    });
}

SStateCall LensCall(CFuzzBytes& rBytes)
{
    static const int LENSES[] = {-2, -1, 0, 215, 239, 418, 419, 215, 239};
    const ELensType eLens = rBytes.OneOf<ELensType>(LENSES);
    return MakeCall("SetLensType(" + std::to_string(eLens) + ")", [=](CStatePlayer& rPlayer) {
        rPlayer.With([&](auto& d) { return d.SetLensType(eLens); });
    });
}

static SStateCall YUVCall(CFuzzBytes& rBytes)
{
    static const int SPACES[] = {0, 1, 2, 3, 4};
    static const int RANGES[] = {0, 1, 2};
    const EYUVSpace eSpace = rBytes.OneOf<EYUVSpace>(SPACES);
    const EYUVRange eRange = rBytes.OneOf<EYUVRange>(RANGES);
    return MakeCall("SetYUVparams(" + std::to_string(eSpace) + ", " + std::to_string(eRange) + ")",
                    [=](CStatePlayer& rPlayer) {
                        rPlayer.With([&](auto& d) { return d.SetYUVparams(eSpace, eRange); });
                        rPlayer.Given().eSpace = eSpace;
                        rPlayer.Given().eRange = eRange;
                    });
}

SStateCall ColourCall(CFuzzBytes& rBytes)
{
    switch (rBytes.Byte() % 4) {
    case 0:
        return YUVCall(rBytes);
    case 1: {
        const int nLumaMin = rBytes.Few<int>({16, 0, 300}, &CFuzzBytes::Int);
        const int nLumaMax = rBytes.Few<int>({235, 16, -1}, &CFuzzBytes::Int);
        const int nChromaMin = rBytes.Few<int>({16, 128}, &CFuzzBytes::Int);
        return MakeCall("SetYUVLevels(" + std::to_string(nLumaMin) + ", " + std::to_string(nLumaMax) + ", " +
                            std::to_string(nChromaMin) + ")",
                        [=](CStatePlayer& rPlayer) {
                            rPlayer.With(
                                [&](auto& d) { return d.SetYUVLevels(nLumaMin, nLumaMax, nChromaMin); });
                        });
    }
    case 2: {
        const float fLuma = rBytes.Few<float>({1.0f, 1e30f, 1.5f}, &CFuzzBytes::Float);
        const float fChroma = rBytes.Few<float>({2.0f, -1e-30f}, &CFuzzBytes::Float);
        return MakeCall("SetGains(" + NumberWords(fLuma) + ", " + NumberWords(fChroma) + ")",
                        [=](CStatePlayer& rPlayer) {
                            rPlayer.With([&](auto& d) { return d.SetGains(fLuma, fChroma); });
                        });
    }
    default: {
        static const int FILTERS[] = {0, 1};
        const EInterpolationType eType = rBytes.OneOf<EInterpolationType>(FILTERS);
        return MakeCall("SetInterpolationType(" + std::to_string(eType) + ")", [=](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.SetInterpolationType(eType); });
        });
    }
    }
}

SStateCall OrientationCall(CFuzzBytes& rBytes)
{
    switch (rBytes.Byte() % 3) {
    case 0: {
        static const int ROTATIONS[] = {0, 90, 180, 270};
        const int nDegrees = rBytes.OneOf<int>(ROTATIONS);
        return MakeCall("SetRotation(" + std::to_string(nDegrees) + ")", [=](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.SetRotation(nDegrees); });
        });
    }
    case 1: {
        const unsigned int nFlips = rBytes.Byte() % 4;
        return MakeCall(std::string("SetFlip(") + (nFlips % 2 != 0 ? "true" : "false") + ", " +
                            (nFlips / 2 != 0 ? "true" : "false") + ")",
                        [=](CStatePlayer& rPlayer) {
                            rPlayer.With(
                                [&](auto& d) { return d.SetFlip(nFlips % 2 != 0, nFlips / 2 != 0); });
                        });
    }
    default: {
        const float fDistance = rBytes.Few<float>({0.5f, 0.0f, 1.0f, 0.25f}, &CFuzzBytes::Float);
        return MakeCall("SetEyeDistance(" + NumberWords(fDistance) + ")", [=](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.SetEyeDistance(fDistance); });
        });
    }
    }
}

SStateCall WallCall(CFuzzBytes& rBytes)
{
    if (rBytes.Byte() % 3 == 0) {
        const bool bStrict = rBytes.Bool();
        return MakeCall(std::string("SetStrictTiltLimits(") + (bStrict ? "true" : "false") + ")",
                        [=](CStatePlayer& rPlayer) {
                            rPlayer.With([&](auto& d) { return d.SetStrictTiltLimits(bStrict); });
                        });
    }
    const unsigned int nKind = rBytes.Byte();
    const float fTilt = nKind < 200 ? static_cast<float>(nKind) / 2.0f - 50.0f : rBytes.Float();
    return MakeCall("SetMountTilt(" + NumberWords(fTilt) + ")", [=](CStatePlayer& rPlayer) {
        rPlayer.With([&](auto& d) { return d.SetMountTilt(fTilt); });
    });
}

/// An angle that views know mostly; any number now and then.
static float ReadAngle(CFuzzBytes& rBytes)
{
    const unsigned int nKind = rBytes.Byte();
    return nKind < 224 ? static_cast<float>(nKind) * 1.5f - 168.0f : rBytes.Float();
}

SStateCall MoveCall(CFuzzBytes& rBytes)
{
    const unsigned int nKind = rBytes.Byte() % 8;
    const float fPan = ReadAngle(rBytes);
    const float fTilt = ReadAngle(rBytes);
    const float fZoom = ReadAngle(rBytes);
    const std::string strNumbers =
        "(" + NumberWords(fPan) + ", " + NumberWords(fTilt) + ", " + NumberWords(fZoom) + ")";
    if (nKind < 4)
        return MakeCall("AbsolutePTZ" + strNumbers, [=](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.AbsolutePTZ(fPan, fTilt, fZoom); });
        });
    if (nKind < 6)
        return MakeCall("RelativePTZ" + strNumbers, [=](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.RelativePTZ(fPan, fTilt, fZoom); });
        });
    if (nKind == 6)
        return MakeCall("AnaloguePTZ(0, 0, 0)", [](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.AnaloguePTZ(0.0f, 0.0f, 0.0f); });
        });
    return MakeCall("AnaloguePTZ" + strNumbers + " / 60", [=](CStatePlayer& rPlayer) {
        rPlayer.With([&](auto& d) { return d.AnaloguePTZ(fPan / 60.0f, fTilt / 60.0f, fZoom / 60.0f); });
    });
}

SStateCall MouseCall(CFuzzBytes& rBytes)
{
    const unsigned int nKind = rBytes.Byte() % 8;
    if (nKind == 0) {
        const double fDelta = static_cast<double>(rBytes.Float());
        return MakeCall(
            "OnMouseWheel(" + NumberWords(static_cast<float>(fDelta)) + ")",
            [=](CStatePlayer& rPlayer) { rPlayer.With([&](auto& d) { return d.OnMouseWheel(fDelta); }); });
    }
    if (nKind == 1)
        return MakeCall("OnMouseUp()",
                        [](CStatePlayer& rPlayer) { rPlayer.With([&](auto& d) { return d.OnMouseUp(); }); });
    const int x = rBytes.Between(-20, 100);
    const int y = rBytes.Between(-20, 100);
    const std::string strPlace = std::to_string(x) + ", " + std::to_string(y);
    if (nKind < 4)
        return MakeCall("OnMouseDown(" + strPlace + ")", [=](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.OnMouseDown(x, y); });
        });
    const unsigned int nLocks = rBytes.Byte() % 8;
    const bool bLockX = nLocks == 1;
    const bool bLockY = nLocks == 2;
    return MakeCall("OnMouseDown(32, 24), OnMouseMove(" + strPlace + (bLockX ? ", true" : ", false") +
                        (bLockY ? ", true)" : ", false)"),
                    [=](CStatePlayer& rPlayer) {
                        rPlayer.With([&](auto& d) { return d.OnMouseDown(32, 24); });
                        rPlayer.With([&](auto& d) { return d.OnMouseMove(x, y, bLockX, bLockY); });
                    });
}

// What to show, where to look, and the getters.
#include "ControlPlayer.h"

#include "FuzzSupport.h"

void CPlayer::Choices()
{
    static const int VIEWS[] = {3, 1, 9, 2, 4, 5, 6, 7, 8, 0};
    static const int MOUNTS[] = {90, 0, -90, 1000};
    static const int LENSES[] = {-2, -1, 0, 215, 239, 418, 419};
    switch (m_rBytes.Byte() % 5) {
    case 4:
        Panes();
        break;
    case 0:
        With([&](auto& d) { return d.SetMountType(m_rBytes.OneOf<EMountType>(MOUNTS)); });
        break;
    case 1:
        With([&](auto& d) { return d.SetLensType(m_rBytes.OneOf<ELensType>(LENSES)); });
        break;
    default:
        With([&](auto& d) { return d.SetViewType(m_rBytes.OneOf<EViewType>(VIEWS)); });
        break;
    }
}

void CPlayer::Panes()
{
    static const int VIEWS[] = {1, 3, 4, 6, 8, 9, 201, 77};
    std::vector<SPane> vPanes(m_rBytes.Byte() % 18);
    for (SPane& rPane : vPanes) {
        const bool bAny = m_rBytes.Byte() % 8 == 0;
        for (int* const p : {&rPane.sRect.x, &rPane.sRect.y, &rPane.sRect.width, &rPane.sRect.height})
            *p = bAny ? m_rBytes.Int() : m_rBytes.Between(0, 40);
        rPane.eView = m_rBytes.OneOf<EViewType>(VIEWS);
        rPane.fPan = m_rBytes.Float();
        rPane.fZoom = m_rBytes.Float();
        rPane.fRoll = m_rBytes.Float();
        rPane.fEyeDistance = m_rBytes.Float();
    }
    With([&](auto& d) { return d.SetPanes(vPanes); });
    With([&](auto& d) { return d.SelectPane(m_rBytes.Between(-1, 16)); });
    const int nGap = m_rBytes.Between(-1, 20);
    With([&](auto& d) { return d.SetPaneGap(nGap, 0x123456FF); });
}

void CPlayer::Colours()
{
    static const int SPACES[] = {0, 1, 2, 3, 4};
    static const int RANGES[] = {0, 1, 2};
    switch (m_rBytes.Byte() % 3) {
    case 0: {
        const EYUVSpace eSpace = m_rBytes.OneOf<EYUVSpace>(SPACES);
        With([&](auto& d) { return d.SetYUVparams(eSpace, m_rBytes.OneOf<EYUVRange>(RANGES)); });
        break;
    }
    case 1: {
        const int nLumaMin = m_rBytes.Few<int>({16, 0, 300}, &CFuzzBytes::Int);
        const int nLumaMax = m_rBytes.Few<int>({235, 16, -1}, &CFuzzBytes::Int);
        With([&](auto& d) {
            return d.SetYUVLevels(nLumaMin, nLumaMax, m_rBytes.Few<int>({16, 128}, &CFuzzBytes::Int));
        });
        break;
    }
    default: {
        const float fLuma = m_rBytes.Few<float>({1.0f, 1e30f, 1.5f}, &CFuzzBytes::Float);
        With([&](auto& d) {
            return d.SetGains(fLuma, m_rBytes.Few<float>({2.0f, -1e-30f}, &CFuzzBytes::Float));
        });
        break;
    }
    }
}

void CPlayer::Orientation()
{
    static const int ROTATIONS[] = {0, 90, 180, 270};
    switch (m_rBytes.Byte() % 4) {
    case 0:
        With([&](auto& d) { return d.SetRotation(m_rBytes.OneOf<int>(ROTATIONS)); });
        break;
    case 1: {
        const unsigned int nFlips = m_rBytes.Byte();
        With([&](auto& d) { return d.SetFlip(nFlips % 2 != 0, nFlips / 2 % 2 != 0); });
        break;
    }
    case 2:
        With([&](auto& d) { return d.SetEyeDistance(m_rBytes.Float()); });
        break;
    default:
        With([&](auto& d) { return d.SetMountTilt(m_rBytes.Float()); });
        break;
    }
}

void CPlayer::Switches()
{
    static const int FILTERS[] = {0, 1};
    switch (m_rBytes.Byte() % 5) {
    case 0:
        With([&](auto& d) { return d.SetWireFrame(m_rBytes.Bool()); });
        break;
    case 1:
        m_oDewarper.SetLogGLErrors(m_rBytes.Bool());
        break;
    case 2:
        m_oDewarper.SetLogShaderCode(m_rBytes.Bool());
        break;
    case 3:
        With([&](auto& d) { return d.SetStrictTiltLimits(m_rBytes.Bool()); });
        break;
    default:
        With([&](auto& d) { return d.SetInterpolationType(m_rBytes.OneOf<EInterpolationType>(FILTERS)); });
        break;
    }
}

void CPlayer::AbsoluteMove()
{
    const float fPan = m_rBytes.Float();
    const float fTilt = m_rBytes.Float();
    With([&](auto& d) { return d.AbsolutePTZ(fPan, fTilt, m_rBytes.Float()); });
}

void CPlayer::RelativeMove()
{
    const float fPan = m_rBytes.Float();
    const float fTilt = m_rBytes.Float();
    With([&](auto& d) { return d.RelativePTZ(fPan, fTilt, m_rBytes.Float()); });
}

void CPlayer::AnalogueMove()
{
    const float fPan = m_rBytes.Float();
    const float fTilt = m_rBytes.Float();
    With([&](auto& d) { return d.AnaloguePTZ(fPan, fTilt, m_rBytes.Float()); });
}

void CPlayer::MouseDrag()
{
    const unsigned int nSteps = m_rBytes.Byte();
    if ((nSteps & 1) != 0) {
        const int x = m_rBytes.Int();
        With([&](auto& d) { return d.OnMouseDown(x, m_rBytes.Int()); });
    }
    if ((nSteps & 2) != 0) {
        const int x = m_rBytes.Int();
        With([&](auto& d) { return d.OnMouseMove(x, m_rBytes.Int(), (nSteps & 4) != 0, (nSteps & 8) != 0); });
    }
    if ((nSteps & 16) != 0)
        With([&](auto& d) { return d.OnMouseUp(); });
}

void CPlayer::MouseWheel()
{
    With([&](auto& d) {
        return d.OnMouseWheel(static_cast<double>(m_rBytes.Float()) * (m_rBytes.Bool() ? 1.0 : 1e300));
    });
}

/// Asks a dewarper of either engine.
template <class D>
static void AskAll(D& d)
{
    float afValues[3] = {};
    int anValues[4] = {};
    bool abValues[2] = {};
    d.GetPTZ(afValues[0], afValues[1], afValues[2]);
    d.GetPTZAnalog(afValues[0], afValues[1], afValues[2]);
    d.GetFlip(abValues[0], abValues[1]);
    d.GetGains(afValues[0], afValues[1]);
    d.GetYUVLevels(anValues[0], anValues[1], anValues[2]);
    d.GetDewarperVersion(anValues[0], anValues[1]);
    const int nRotation = d.GetRotation();
    Require(nRotation >= 0 && nRotation <= 270 && nRotation % 90 == 0, "quarter turns");
    const float fDistance = d.GetEyeDistance();
    Require(fDistance >= 0.0f && fDistance <= 1.0f, "the eye stays inside the sphere");
    const float fTilt = d.GetMountTilt();
    Require(fTilt - fTilt == 0.0f, "a finite mount tilt");
    static_cast<void>(d.GetViewType());
    static_cast<void>(d.GetMountType());
    static_cast<void>(d.GetLensType());
    static_cast<void>(d.GetInterpolationType());
    static_cast<void>(d.GetStrictTiltLimits());
    static_cast<void>(d.GetLastDisplayedTextureTimestamp());
    Require(d.GetFisheyeRadius() >= 0, "a radius");
    d.GetImage(&anValues[0], &anValues[1], &anValues[2], &anValues[3]);
}

void CPlayer::Getters()
{
    With([](auto& d) { AskAll(d); });
    static_cast<void>(m_oDewarper.GetLogGLErrors());
    static_cast<void>(m_oDewarper.GetLogShaderCode());
}

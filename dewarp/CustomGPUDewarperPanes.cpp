// Several views of the camera in one picture: one upload, one program and one mesh for all that are alike.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/gl/PictureRequests.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>
#include <array>

namespace
{

/// A rectangle of the target, rows counted from its top, as the framebuffer counts them.
SGRect InFrameBuffer(const SGRect& r, const STargetShape& rTarget)
{
    return {r.x, rTarget.bTopDown ? r.y : rTarget.nHeight - r.y - r.height, r.width, r.height};
}

/// Bands of a pane's picture as bands of the target.
SClipBands Shifted(const SClipBands& rBands, const SGRect& rPlace)
{
    SClipBands sBands = rBands;
    for (int i = 0; i < 4; ++i) {
        if (sBands.anPlanes[i] != -1)
            sBands.anPlanes[i] += i < 2 ? rPlace.x : rPlace.y;
    }
    return sBands;
}

void ClearRect(const SGRect& r, const std::array<float, 4>& afColor)
{
    glScissor(r.x, r.y, r.width, r.height);
    glClearColor(afColor[0], afColor[1], afColor[2], afColor[3]);
    glClear(GL_COLOR_BUFFER_BIT);
}

std::array<float, 4> ColorOf(unsigned int nColor)
{
    std::array<float, 4> afColor{};
    for (std::size_t i = 0; i < afColor.size(); ++i)
        afColor[i] = static_cast<float>(nColor >> (24 - 8 * i) & 255) / 255.0f;
    return afColor;
}

} // namespace

bool CCustomGPUDewarper::SetPanes(std::vector<SPane> vPanes)
{
    CLockScope oScope(*this);
    return GuardMemory("SetPanes", pRooms->oReport, false, [&] {
        const bool bTaken = pRooms->oPanes.Set(vPanes);
        if (bTaken)
            RequestFrame();
        return bTaken;
    });
}

std::vector<SPane> CCustomGPUDewarper::GetPanes()
{
    CLockScope oScope(*this);
    return GuardMemory("GetPanes", pRooms->oReport, std::vector<SPane>(),
                       [&] { return pRooms->oPanes.List(); });
}

bool CCustomGPUDewarper::SetPaneGap(int nPixels, unsigned int nColor)
{
    CLockScope oScope(*this);
    const bool bTaken = pRooms->oPanes.SetGap(nPixels, nColor);
    if (bTaken)
        RequestFrame();
    return bTaken;
}

bool CCustomGPUDewarper::SelectPane(int nPane)
{
    CLockScope oScope(*this);
    return pRooms->oPanes.Select(nPane);
}

int CCustomGPUDewarper::GetSelectedPane()
{
    CLockScope oScope(*this);
    return pRooms->oPanes.Selected();
}

/// Everything that the panes need but the frame itself.
bool CCustomGPUDewarper::PreparePanes(const STargetShape& rTarget)
{
    SRooms& r = *pRooms;
    // The one view is decided anew when it comes back: the panes use its program's record.
    r.sDecision.pView = nullptr;
    bViewSetupRequired = true;
    TakePictureSettings();
    r.oPanes.Decide(rTarget, r.sDecision.sPicture);
    DecideLayers();
    const std::span<const SPlacedView> oViews = r.oPanes.Views();
    r.oPoints.MakeRoom(oViews.size());
    std::array<SMeshWish, CPanes::MOST> aWishes;
    for (std::size_t n = 0; n < oViews.size(); ++n) {
        const SFrameDecision& d = *oViews[n].pDecision;
        aWishes[n] = {d.pView, d.sMesh, &d.sParams};
    }
    const SGRect sFirst = oViews.empty() ? SGRect{} : InFrameBuffer(oViews[0].sPlace, rTarget);
    RequestBands(oViews.empty() ? SClipBands() : Shifted(oViews[0].pDecision->sBands, sFirst), sMainShader);
    if (!CheckMainProgram())
        return false;
    r.oPaneMeshes.Prepare({aWishes.data(), oViews.size()});
    return PaintMasks(rTarget);
}

bool CCustomGPUDewarper::DrawPanes(const STargetShape& rTarget)
{
    SRooms& r = *pRooms;
    glViewport(0, 0, rTarget.nWidth, rTarget.nHeight);
    CPrograms::MakeCurrent(sMainShader);
    BindTextures();
    std::array<float, 4> afNothing{};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, afNothing.data());
    const std::array<float, 4> afGap = ColorOf(r.oPanes.GapColor());
    glEnable(GL_SCISSOR_TEST);
    ClearRect({0, 0, rTarget.nWidth, rTarget.nHeight}, afGap);
    bool bWhole = true;
    for (const SPlacedView& rPane : r.oPanes.Views()) {
        ClearRect(InFrameBuffer(rPane.sGround, rTarget), afGap);
        ClearRect(InFrameBuffer(rPane.sPlace, rTarget), afNothing);
        bWhole = bWhole && DrawPane(rPane, rTarget);
    }
    glDisable(GL_SCISSOR_TEST);
    glClearColor(afNothing[0], afNothing[1], afNothing[2], afNothing[3]);
    glViewport(0, 0, rTarget.nWidth, rTarget.nHeight);
    // Whoever is drawn next brings buffers of its own.
    pBoundViewObject = nullptr;
    return bWhole;
}

bool CCustomGPUDewarper::DrawPane(const SPlacedView& rPane, const STargetShape& rTarget)
{
    const SFrameDecision& d = *rPane.pDecision;
    const SGRect sPlace = InFrameBuffer(rPane.sPlace, rTarget);
    RequestBands(Shifted(d.sBands, sPlace), sMainShader);
    if (!CheckMainProgram())
        return false;
    CCGPUObjAnyView* const pMesh = pRooms->oPaneMeshes.Find(d.sMesh);
    if (pMesh == nullptr)
        return false;
    SViewPart aParts[MAX_VIEW_PARTS];
    for (int i = 0; i < d.nParts; ++i) {
        aParts[i] = d.aParts[i];
        aParts[i].nX += sPlace.x;
        aParts[i].nY += sPlace.y;
    }
    CPrograms::MakeCurrent(sMainShader);
    pMesh->LoadVertexAndTextureCoordinates(&sMainShader);
    pMesh->DrawEach(aParts, d.nParts, sMainShader);
    return true;
}

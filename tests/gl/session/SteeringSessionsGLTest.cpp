// Pan, tilt and zoom in every way, and how the picture is turned.
#include "tests/gl/session/DesktopSession.h"

class SteeringSessions : public CSessionTest
{
};

static std::string ViewName(int nView, EMountType eMount)
{
    return "view-" + std::to_string(nView) +
           (eMount == MOUNT_WALL      ? "-wall"
            : eMount == MOUNT_CEILING ? "-ceiling"
                                      : "-floor");
}

/// Plays a session for every view and mount, with the first frame drawn.
static void PlayEverywhere(CSessionBook& rBook, const std::function<void(CDesktopSession&)>& fSession)
{
    for (int nView = VIEW_VCAM; nView <= VIEW_FISHEYE_CIRCULAR; ++nView)
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR, MOUNT_WALL}) {
            CDesktopSession oSession(rBook, ViewName(nView, eMount));
            oSession.Choose(static_cast<EViewType>(nView), eMount);
            oSession.Draw("first");
            fSession(oSession);
        }
}

TEST_F(SteeringSessions, MovesByNumbersSpeakToGLAsTheyDid)
{
    Play("moves", [](CSessionBook& rBook) {
        PlayEverywhere(rBook, [](CDesktopSession& rSession) {
            rSession->AbsolutePTZ(30.0f, 20.0f, 100.0f);
            rSession.Draw("absolute");
            rSession.Draw("absolute-steady");
            rSession->AbsolutePTZ(-150.0f, 75.0f, 60.0f);
            rSession.Draw("absolute-far");
            rSession->RelativePTZ(5.0f, -10.0f, 12.0f);
            rSession.Draw("relative");
            rSession->AnaloguePTZ(0.5f, -0.25f, 0.5f);
            rSession.Draw("analogue");
            rSession.Draw("analogue-on");
            rSession->AnaloguePTZ(0.0f, 0.0f, 0.0f);
            rSession.Draw("analogue-off");
            rSession.ReadBack("read");
        });
    });
}

TEST_F(SteeringSessions, TheMouseSpeaksToGLAsItDid)
{
    Play("mouse", [](CSessionBook& rBook) {
        PlayEverywhere(rBook, [](CDesktopSession& rSession) {
            rSession.Step("drag", [](CTestDewarper& rDewarper) {
                rDewarper.OnMouseDown(20, 20);
                rDewarper.OnMouseMove(26, 24, false, false);
            });
            rSession.Draw("dragged");
            rSession->OnMouseMove(40, 30, true, false);
            rSession->OnMouseMove(50, 35, false, true);
            rSession->OnMouseUp();
            rSession.Draw("locked");
            rSession->OnMouseMove(10, 10, false, false);
            rSession.Draw("let-go");
            rSession->OnMouseWheel(120.0);
            rSession.Draw("wheel");
            rSession->OnMouseWheel(-360.0);
            rSession.Draw("wheel-back");
            rSession.ReadBack("read");
        });
    });
}

TEST_F(SteeringSessions, TurnsAndFlipsSpeakToGLAsTheyDid)
{
    Play("turns", [](CSessionBook& rBook) {
        for (int nView = VIEW_VCAM; nView <= VIEW_FISHEYE_CIRCULAR; ++nView) {
            CDesktopSession oSession(rBook, ViewName(nView, MOUNT_CEILING));
            oSession.Choose(static_cast<EViewType>(nView), MOUNT_CEILING);
            for (const int nDegrees : {0, 90, 180, 270})
                for (int nFlips = 0; nFlips < 4; ++nFlips) {
                    oSession->SetRotation(nDegrees);
                    oSession->SetFlip(nFlips % 2 != 0, nFlips / 2 != 0);
                    oSession.Draw("turn" + std::to_string(nDegrees) + "-flips" + std::to_string(nFlips));
                }
            oSession->SetRotation(0);
            oSession.Draw("back");
        }
    });
}

TEST_F(SteeringSessions, TheInclinedCameraSpeaksToGLAsItDid)
{
    Play("mount-tilt", [](CSessionBook& rBook) {
        PlayEverywhere(rBook, [](CDesktopSession& rSession) {
            for (const float fTilt : {20.0f, -15.0f, 0.0f}) {
                rSession->SetMountTilt(fTilt);
                rSession.Draw("tilt" + std::to_string(static_cast<int>(fTilt)));
                rSession->SetStrictTiltLimits(false);
                rSession.Draw("tilt" + std::to_string(static_cast<int>(fTilt)) + "-wide");
                rSession->SetStrictTiltLimits(true);
            }
            rSession.Draw("strict");
        });
        for (const EViewType eView : {VIEW_VCAM, VIEW_VCAM_QUAD}) {
            CDesktopSession oSession(rBook, "eye-view-" + std::to_string(eView));
            oSession.Choose(eView, MOUNT_WALL);
            for (const float fDistance : {0.5f, 1.0f, 0.0f}) {
                oSession->SetEyeDistance(fDistance);
                oSession.Draw("distance" + std::to_string(static_cast<int>(fDistance * 10.0f)));
            }
        }
    });
}

// Start, stop, freed objects, read-back, and everything at once.
#include "tests/gl/session/DesktopSession.h"

class LifeSessions : public CSessionTest
{
};

/// Every layer and setting that is kept over a restart. The lens fills the frame's rows.
static void SwitchEverythingOn(CCustomGPUDewarper& rDewarper)
{
    std::vector<unsigned char> vPixels(16 * 12 * 4, 120);
    rDewarper.SetOutputOverlay(vPixels.data(), 16, 12, 0);
    rDewarper.SetMaskPolygons({SGPolygon{{{4, 4}, {30, 6}, {12, 28}}, 0x208040FF}});
    SGPUString sText;
    sText.strText = "12:00";
    sText.nHeight = 12;
    rDewarper.SetStrings({sText});
    rDewarper.SetLensType(LENS_DSL419);
    rDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
    rDewarper.SetFlip(true, false);
}

/// Plays a session plain, and one with everything on, for views whose meshes are all different.
static void PlayPlainAndFull(CSessionBook& rBook, const std::function<void(CDesktopSession&)>& fSession)
{
    for (const EViewType eView : {VIEW_VCAM, VIEW_FISHEYE, VIEW_FISHEYE_CIRCULAR, VIEW_PANORAMA_FULL,
                                  VIEW_PANORAMA_DUAL, VIEW_PANORAMA_TRIPLE})
        for (const bool bFull : {false, true}) {
            CDesktopSession oSession(rBook, "view-" + std::to_string(eView) + (bFull ? "-full" : "-plain"));
            oSession.Choose(eView, MOUNT_CEILING);
            if (bFull)
                SwitchEverythingOn(*oSession);
            oSession.Draw("first");
            oSession->AbsolutePTZ(25.0f, 35.0f, 90.0f);
            oSession.Draw("moved");
            fSession(oSession);
        }
}

TEST_F(LifeSessions, FreedObjectsSpeakToGLAsTheyDid)
{
    Play("freed", [](CSessionBook& rBook) {
        PlayPlainAndFull(rBook, [](CDesktopSession& rSession) {
            rSession.Step("free", [](CTestDewarper& rDewarper) { rDewarper.FreeOpenGLObjects(); });
            rSession.Draw("after-free");
            rSession.Draw("steady");
            rSession.Step("reinitialize",
                          [](CTestDewarper& rDewarper) { rDewarper.ReinitializeOpenGLObjects(); });
            rSession.DrawAgain("without-a-frame");
            rSession.Draw("after-reinitialize");
            rSession.Draw("steady-again");
            rSession.Step("free-twice", [](CTestDewarper& rDewarper) {
                rDewarper.FreeOpenGLObjects();
                rDewarper.FreeOpenGLObjects();
            });
            rSession.Draw("after-free-twice");
            rSession.ReadBack("read");
        });
    });
}

TEST_F(LifeSessions, RestartsSpeakToGLAsTheyDid)
{
    Play("restarts", [](CSessionBook& rBook) {
        PlayPlainAndFull(rBook, [](CDesktopSession& rSession) {
            rSession.Step("stop", [](CTestDewarper& rDewarper) { rDewarper.StopGL(); });
            rSession.Draw("stopped");
            rSession.Step("stop-again", [](CTestDewarper& rDewarper) { rDewarper.StopGL(); });
            rSession.Step("restart", [](CTestDewarper& rDewarper) { rDewarper.StartGL(); });
            rSession.DrawAgain("the-frame-that-waited");
            rSession.Draw("after-restart");
            rSession.Draw("steady");
            rSession.Step("start-again", [](CTestDewarper& rDewarper) { rDewarper.StartGL(); });
            rSession.DrawAgain("without-a-frame");
            rSession.Draw("after-start");
            rSession.ReadBack("read");
        });
    });
}

TEST_F(LifeSessions, ObjectsWithoutFrameOrStartSpeakToGLAsTheyDid)
{
    Play("empty", [](CSessionBook& rBook) {
        {
            CDesktopSession oSession(rBook, "no-frame");
            oSession.DrawAgain("draw");
            oSession.ReadBack("read");
        }
        rBook.Begin("no-start");
        auto pDewarper = std::make_unique<CCustomGPUDewarperOffscreen>();
        rBook.Step("draw", [&] { rBook.Note(pDewarper->DrawGLScene(true) ? "drawn" : "not drawn"); });
        rBook.Step("start", [&] { rBook.Note(pDewarper->StartGL() ? "started" : "not started"); });
        CTestFrame oFrame = SessionFrame();
        rBook.Step("no-target", [&] {
            pDewarper->SetTexture(oFrame.Image(), false, nullptr, 0);
            rBook.Note(pDewarper->DrawGLScene(true) ? "drawn" : "not drawn");
        });
        rBook.Step("target", [&] {
            pDewarper->InitGL(SESSION_WIDTH, SESSION_HEIGHT);
            rBook.Note(pDewarper->DrawGLScene(true) ? "drawn" : "not drawn");
        });
        rBook.Step("end", [&] { pDewarper.reset(); });
    });
}

TEST_F(LifeSessions, ReadingBackSpeaksToGLAsItDid)
{
    Play("read-back", [](CSessionBook& rBook) {
        CDesktopSession oSession(rBook, "sizes");
        oSession.Choose(VIEW_FISHEYE, MOUNT_CEILING);
        oSession.Draw("first");
        oSession.ReadBack("read");
        oSession.ReadBack("read-again");
        for (const int nSize : {31, 64}) {
            oSession.Step("init-" + std::to_string(nSize),
                          [&](CTestDewarper& rDewarper) { rDewarper.InitGL(nSize, nSize + 2); });
            oSession.ReadBack("read-before-" + std::to_string(nSize));
            oSession.Draw("draw-" + std::to_string(nSize));
            oSession.ReadBack("read-" + std::to_string(nSize));
        }
        oSession.Step("exchange", [&](CTestDewarper& rDewarper) {
            rDewarper.SetTexture(oSession.Frame().Image(), false, nullptr, 3);
            rBook.Note(rDewarper.DrawGLScene(true) ? "drawn" : "not drawn");
            rBook.Note(std::to_string(rDewarper.GetLastDisplayedTextureTimestamp()));
        });
        oSession.Step("logging", [&](CTestDewarper& rDewarper) {
            rDewarper.SetLogGLErrors(true);
            rDewarper.DrawGLScene(true);
        });
    });
}

TEST_F(LifeSessions, EverythingAtOnceSpeaksToGLAsItDid)
{
    Play("everything", [](CSessionBook& rBook) {
        for (int nView = VIEW_VCAM; nView <= VIEW_FISHEYE_CIRCULAR; ++nView)
            for (const int nFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_RGBA32}) {
                CTestFrame oFrame = SessionFrame(nFormat);
                CTestFrame oOther = SessionFrame(IMAGE_FORMAT_YUV420P, 56, 40);
                CDesktopSession oSession(rBook, "view-" + std::to_string(nView) + "-format-" +
                                                    std::to_string(nFormat));
                oSession.Choose(static_cast<EViewType>(nView), MOUNT_FLOOR);
                SwitchEverythingOn(*oSession);
                oSession.Draw("first", oFrame);
                oSession.Draw("steady", oFrame);
                oSession->RelativePTZ(3.0f, 3.0f, -20.0f);
                oSession.Draw("moved", oFrame);
                oSession.Draw("other-frame", oOther);
                oSession.Step("init", [](CTestDewarper& rDewarper) { rDewarper.InitGL(30, 50); });
                oSession.Draw("other-target", oOther);
                oSession.ReadBack("read");
            }
    });
}

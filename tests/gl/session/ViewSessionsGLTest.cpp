// Views, mounts, lenses and target sizes.
#include "tests/gl/session/DesktopSession.h"

class ViewSessions : public CSessionTest
{
};

struct SMountCase
{
    const char* pName;
    EMountType eMount;
};

static const SMountCase MOUNTS[] = {{"ceiling", MOUNT_CEILING}, {"floor", MOUNT_FLOOR}, {"wall", MOUNT_WALL}};

static const int LENSES[] = {LENS_AUTO,   LENS_UNSET,  LENS_UNKNOWN, LENS_DSL215,
                             LENS_DSL239, LENS_DSL418, LENS_DSL419};

TEST_F(ViewSessions, EveryViewAndMountSpeaksToGLAsItDid)
{
    Play("views", [](CSessionBook& rBook) {
        for (const SMountCase& sMount : MOUNTS)
            for (int nView = VIEW_UNSET; nView <= VIEW_FISHEYE_CIRCULAR; ++nView) {
                CDesktopSession oSession(rBook, std::string(sMount.pName) + "-" + std::to_string(nView));
                oSession.Choose(static_cast<EViewType>(nView), sMount.eMount);
                oSession.Draw("first");
                oSession.Draw("steady");
                oSession.DrawAgain("same-frame");
                oSession.ReadBack("read");
            }
    });
}

TEST_F(ViewSessions, EveryLensSpeaksToGLAsItDid)
{
    static const EViewType VIEWS[] = {VIEW_VCAM, VIEW_FISHEYE, VIEW_PANORAMA_FULL, VIEW_PANORAMA_DUAL,
                                      VIEW_PANORAMA_TRIPLE};
    Play("lenses", [](CSessionBook& rBook) {
        for (const int nLens : LENSES)
            for (const EViewType eView : VIEWS) {
                CDesktopSession oSession(rBook, std::to_string(nLens) + "-view-" + std::to_string(eView));
                oSession.Choose(eView, MOUNT_CEILING);
                oSession->SetLensType(static_cast<ELensType>(nLens));
                oSession.Draw("first");
                oSession.Draw("steady");
                oSession->AbsolutePTZ(20.0f, 10.0f, 90.0f);
                oSession.Draw("moved");
                oSession.ReadBack("read");
            }
        for (const int nLens : LENSES) {
            CDesktopSession oSession(rBook, std::to_string(nLens) + "-wall");
            oSession.Choose(VIEW_PANORAMA_FULL, MOUNT_WALL);
            oSession->SetLensType(static_cast<ELensType>(nLens));
            oSession.Draw("first");
            oSession.Draw("steady");
            oSession.ReadBack("read");
        }
    });
}

TEST_F(ViewSessions, LensesThatChangeSpeakToGLAsTheyDid)
{
    Play("lens-changes", [](CSessionBook& rBook) {
        for (const EViewType eView : {VIEW_VCAM, VIEW_FISHEYE, VIEW_PANORAMA_HALF}) {
            CDesktopSession oSession(rBook, "view-" + std::to_string(eView));
            oSession.Choose(eView, MOUNT_FLOOR);
            oSession.Draw("unset");
            // Lenses that fill the frame's rows come and go; the others are played alone.
            for (const int nLens : {LENS_DSL418, LENS_AUTO, LENS_DSL419, LENS_UNKNOWN, LENS_UNSET}) {
                oSession->SetLensType(static_cast<ELensType>(nLens));
                oSession.Draw("lens" + std::to_string(nLens));
            }
            oSession.Draw("steady");
        }
        // A frame of a size that tells its lens.
        CDesktopSession oSession(rBook, "detected");
        oSession.Choose(VIEW_VCAM, MOUNT_CEILING);
        oSession->SetLensType(LENS_AUTO);
        oSession.Draw("small");
        CTestFrame oLarge = SessionFrame(IMAGE_FORMAT_GRAY8, 512, 512);
        oSession.Draw("large", oLarge);
        oSession.Draw("steady", oLarge);
        oSession.Draw("small-again");
    });
}

TEST_F(ViewSessions, ViewsThatFollowOneAnotherSpeakToGLAsTheyDid)
{
    Play("view-changes", [](CSessionBook& rBook) {
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR}) {
            CDesktopSession oSession(rBook, eMount == MOUNT_CEILING ? "ceiling" : "floor");
            oSession.Choose(VIEW_VCAM, eMount);
            oSession->SetLensType(LENS_DSL419);
            // Twice: meshes that are kept are used again.
            for (const char* pRound : {"first", "again"})
                for (int nView = VIEW_VCAM; nView <= VIEW_FISHEYE_CIRCULAR; ++nView) {
                    oSession->SetViewType(static_cast<EViewType>(nView));
                    oSession.Draw(std::string(pRound) + "-" + std::to_string(nView));
                    oSession.Draw(std::string(pRound) + "-" + std::to_string(nView) + "-steady");
                }
        }
        for (int nView = VIEW_VCAM; nView <= VIEW_FISHEYE_CIRCULAR; ++nView) {
            CDesktopSession oSession(rBook, "mounts-view-" + std::to_string(nView));
            oSession->SetViewType(static_cast<EViewType>(nView));
            for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR, MOUNT_CEILING, MOUNT_WALL}) {
                oSession->SetMountType(eMount);
                oSession.Draw("mount" + std::to_string(eMount));
            }
        }
    });
}

TEST_F(ViewSessions, TargetsThatAreResizedSpeakToGLAsTheyDid)
{
    static const int SIZES[][2] = {{80, 40}, {40, 80}, {64, 64}, {33, 21}, {200, 24}};
    Play("targets", [](CSessionBook& rBook) {
        for (int nView = VIEW_VCAM; nView <= VIEW_FISHEYE_CIRCULAR; ++nView)
            for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL}) {
                CDesktopSession oSession(rBook, "view-" + std::to_string(nView) +
                                                    (eMount == MOUNT_WALL ? "-wall" : "-ceiling"));
                oSession.Choose(static_cast<EViewType>(nView), eMount);
                oSession.Draw("first");
                for (const auto& anSize : SIZES) {
                    const std::string strSize = std::to_string(anSize[0]) + "x" + std::to_string(anSize[1]);
                    oSession.Step("init-" + strSize,
                                  [&](CTestDewarper& rDewarper) { rDewarper.InitGL(anSize[0], anSize[1]); });
                    oSession.Draw(strSize);
                }
                oSession.Draw("steady");
                oSession.ReadBack("read");
            }
    });
}

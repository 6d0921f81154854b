// A room, seen through a lens, must come out of every view as the room looks: the right way up, nothing
// mirrored, every bearing in its place.
#include "tests/support/EngineDewarper.h"

#include <cstdio>
#include <gtest/gtest.h>

struct SRoomCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    int nLens;
    int nFrameWidth;
    int nFrameHeight;
    int nWidth;
    int nHeight;
    bool bStrict;
    double fPan;
    double fTilt;
    double fZoom;
    double fMountTilt;
    double fMinPSNR; ///< against the room drawn without lens and mesh; fine lines and letters limit it
};

static const SRoomCase CASES[] = {
    {"vcam ceiling", VIEW_VCAM, MOUNT_CEILING, 419, 640, 640, 400, 300, true, 90, 60, 160, 0, 26},
    {"vcam ceiling east", VIEW_VCAM, MOUNT_CEILING, 239, 672, 600, 400, 300, true, 0, 55, 140, 0, 24},
    {"vcam floor", VIEW_VCAM, MOUNT_FLOOR, 419, 640, 640, 400, 300, true, 90, 120, 160, 0, 23},
    {"vcam wall", VIEW_VCAM, MOUNT_WALL, 419, 640, 640, 400, 300, true, 90, 90, 160, 0, 23.5},
    {"vcam wall corner", VIEW_VCAM, MOUNT_WALL, 215, 536, 486, 400, 300, true, 130, 105, 120, 0, 21},
    {"quad ceiling", VIEW_VCAM_QUAD, MOUNT_CEILING, 419, 640, 640, 400, 400, true, 90, 60, 160, 0, 26},
    {"quad floor", VIEW_VCAM_QUAD, MOUNT_FLOOR, 419, 640, 640, 400, 400, true, 90, 120, 160, 0, 22.5},
    {"fisheye", VIEW_FISHEYE, MOUNT_CEILING, 419, 640, 640, 400, 400, true, 0, 0, 180, 0, 34},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_FLOOR, 419, 640, 640, 400, 400, true, 0, 0, 180, 0, 32},
    {"full ceiling", VIEW_PANORAMA_FULL, MOUNT_CEILING, 419, 640, 640, 1000, 140, true, 0, 0, 180, 0, 32},
    {"full floor", VIEW_PANORAMA_FULL, MOUNT_FLOOR, 419, 640, 640, 1000, 140, true, 0, 0, 180, 0, 30},
    {"half ceiling", VIEW_PANORAMA_HALF, MOUNT_CEILING, 418, 640, 640, 700, 200, true, 45, 0, 180, 0, 20},
    {"quarter ceiling", VIEW_PANORAMA_QUARTER, MOUNT_CEILING, 419, 640, 640, 640, 360, true, 30, 0, 180, 0,
     31.5},
    {"quarter floor", VIEW_PANORAMA_QUARTER, MOUNT_FLOOR, 419, 640, 640, 640, 360, true, -30, 0, 180, 0,
     29.5},
    {"dual ceiling", VIEW_PANORAMA_DUAL, MOUNT_CEILING, 419, 640, 640, 640, 400, true, 0, 0, 180, 0, 31},
    {"dual floor", VIEW_PANORAMA_DUAL, MOUNT_FLOOR, 419, 640, 640, 640, 400, true, 0, 0, 180, 0, 29},
    {"triple ceiling", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, 419, 640, 640, 720, 300, true, 0, 0, 180, 0, 32},
    {"wall", VIEW_PANORAMA_FULL, MOUNT_WALL, 419, 640, 640, 750, 300, true, 0, 0, 180, 0, 29},
    {"wall inclined", VIEW_PANORAMA_FULL, MOUNT_WALL, 419, 640, 640, 750, 300, false, 0, 0, 180, 20, 27},
    {"wall rolled", VIEW_PANORAMA_HALF, MOUNT_WALL, 239, 672, 600, 750, 300, true, 15, 10, 180, 0, 18},
};

static SReferenceSetup SetupOf(const SRoomCase& sCase)
{
    SReferenceSetup s;
    s.eView = sCase.eView;
    s.eMount = sCase.eMount;
    s.nLensType = sCase.nLens;
    s.nImageWidth = sCase.nFrameWidth;
    s.nImageHeight = sCase.nFrameHeight;
    s.nTargetWidth = sCase.nWidth;
    s.nTargetHeight = sCase.nHeight;
    s.fPan = sCase.fPan;
    s.fTilt = sCase.fTilt;
    s.fZoom = sCase.fZoom;
    s.fMountTilt = sCase.fMountTilt;
    s.bStrict = sCase.bStrict;
    return s;
}

class Room : public testing::TestWithParam<SEngineCase<SRoomCase>>
{
};

TEST_P(Room, LooksLikeTheRoom)
{
    const SRoomCase& sCase = GetParam().sCase;
    const SReferenceSetup s = SetupOf(sCase);
    CEngineDewarper oDewarper(GetParam().eEngine, s.nTargetWidth, s.nTargetHeight);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    static CLastPicture oInputs;
    CTestFrame oFrame(oInputs.Of(sCase.pName,
                                 [&] {
                                     return RenderFisheye(RoomColour, s.nLensType, s.nImageWidth,
                                                          s.nImageHeight, s.eMount, s.fMountTilt);
                                 }),
                      IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sPicture = oDewarper.Picture();
    static CLastPicture oViews;
    const STestImage& sWanted =
        oViews.Of(sCase.pName, [&] { return CReferenceView(s).Render(RoomColour, 2); });
    const SImageDifference sDifference = CompareImages(sPicture, sWanted);
    std::printf("  %-20s PSNR %.1f dB, mean difference %.2f\n", sCase.pName, sDifference.fPSNR,
                sDifference.fMean);
    WritePicture("room " + EngineName(GetParam().eEngine) + " " + sCase.pName, sPicture);
    EXPECT_GT(sDifference.fPSNR, sCase.fMinPSNR);
    if (HasFailure())
        WritePicture("room " + EngineName(GetParam().eEngine) + " " + sCase.pName + " wanted", sWanted);
}

INSTANTIATE_TEST_SUITE_P(Views, Room, testing::ValuesIn(WithBothEngines(CASES)), SEngineCaseName());

using RoomSides = CEngineTest;

/// Which wall, floor or ceiling a pixel shows: the letter of its colour, '?' for none.
static char SideOf(const STestImage& sPicture, double fX, double fY)
{
    const unsigned char* p =
        sPicture.At(static_cast<int>(fX * sPicture.nWidth), static_cast<int>(fY * sPicture.nHeight));
    const int r = p[0];
    const int g = p[1];
    const int b = p[2];
    if (r > 2 * g && r > 2 * b)
        return 'N';
    if (g > 3 * r / 2 && g > 3 * b / 2)
        return 'E';
    if (b > 3 * r / 2 && b > 3 * g / 2)
        return 'S';
    if (r > 2 * b && g > 2 * b)
        return 'W';
    if (r > g && g > b)
        return 'f';
    if (b >= r && r > 120)
        return 'c';
    return '?';
}

static STestImage ShowRoom(EDewarpEngine eEngine, EViewType eView, EMountType eMount, double fPan,
                           double fTilt, double fZoom, int nWidth, int nHeight)
{
    SReferenceSetup s;
    s.eView = eView;
    s.eMount = eMount;
    s.nLensType = 419;
    s.nImageWidth = s.nImageHeight = 512;
    s.nTargetWidth = nWidth;
    s.nTargetHeight = nHeight;
    s.fPan = fPan;
    s.fTilt = fTilt;
    s.fZoom = fZoom;
    CEngineDewarper oDewarper(eEngine, nWidth, nHeight);
    oDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    CTestFrame oFrame(RenderFisheye(RoomColour, 419, 512, 512, eMount), IMAGE_FORMAT_RGB24);
    EXPECT_TRUE(oDewarper.Apply(s, oFrame));
    return oDewarper.Picture();
}

TEST_P(RoomSides, TheCameraStandsUprightOnEveryMount)
{
    // A ceiling camera that looks up to the horizon sees the wall above the floor.
    STestImage sPicture = ShowRoom(GetParam(), VIEW_VCAM, MOUNT_CEILING, 90, 55, 140, 320, 240);
    EXPECT_EQ(SideOf(sPicture, 0.3, 0.3), 'N');
    EXPECT_EQ(SideOf(sPicture, 0.52, 0.75), 'f');
    // A floor camera sees the ceiling above the wall.
    sPicture = ShowRoom(GetParam(), VIEW_VCAM, MOUNT_FLOOR, 90, 125, 140, 320, 240);
    EXPECT_EQ(SideOf(sPicture, 0.52, 0.25), 'c');
    EXPECT_EQ(SideOf(sPicture, 0.3, 0.7), 'S');
    // A wall camera sees ceiling, wall and floor.
    sPicture = ShowRoom(GetParam(), VIEW_VCAM, MOUNT_WALL, 90, 90, 180, 320, 240);
    EXPECT_EQ(SideOf(sPicture, 0.52, 0.13), 'c');
    EXPECT_EQ(SideOf(sPicture, 0.42, 0.52), 'N');
    EXPECT_EQ(SideOf(sPicture, 0.52, 0.87), 'f');
    EXPECT_EQ(SideOf(sPicture, 0.03, 0.52), 'W');
    EXPECT_EQ(SideOf(sPicture, 0.97, 0.52), 'E');
}

TEST_P(RoomSides, ThePanoramasShowTheBearingsClockwise)
{
    for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR}) {
        SCOPED_TRACE(eMount == MOUNT_FLOOR ? "floor" : "ceiling");
        const bool bFloor = eMount == MOUNT_FLOOR;
        const STestImage sPicture = ShowRoom(GetParam(), VIEW_PANORAMA_FULL, eMount, 0, 0, 180, 800, 112);
        // Just beside the letters, at the wall's height.
        const double fWall = bFloor ? 0.75 : 0.25;
        std::string strSides;
        for (int i = 0; i < 8; ++i)
            strSides += SideOf(sPicture, (i + 0.7) / 8.0, fWall);
        EXPECT_EQ(strSides, "SWWNNEES");
        EXPECT_EQ(SideOf(sPicture, 0.53, bFloor ? 0.08 : 0.92), bFloor ? 'c' : 'f');
    }
}

TEST_P(RoomSides, TheQuarterPanoramaGoesOnInItsLowerHalf)
{
    for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR}) {
        SCOPED_TRACE(eMount == MOUNT_FLOOR ? "floor" : "ceiling");
        const STestImage sPicture = ShowRoom(GetParam(), VIEW_PANORAMA_QUARTER, eMount, 0, 0, 180, 400, 224);
        const double fWall = eMount == MOUNT_FLOOR ? 0.375 : 0.125;
        EXPECT_EQ(SideOf(sPicture, 0.12, fWall), 'W');
        EXPECT_EQ(SideOf(sPicture, 0.4, fWall), 'N');
        EXPECT_EQ(SideOf(sPicture, 0.88, fWall), 'E');
        EXPECT_EQ(SideOf(sPicture, 0.12, fWall + 0.5), 'E');
        EXPECT_EQ(SideOf(sPicture, 0.4, fWall + 0.5), 'S');
        EXPECT_EQ(SideOf(sPicture, 0.88, fWall + 0.5), 'W');
    }
}

TEST_P(RoomSides, TheQuartersOfTheQuadViewStandInTheirPlaces)
{
    // The camera looks north; each further quarter is turned by 90 degrees, and the last is the unturned one.
    const STestImage sPicture = ShowRoom(GetParam(), VIEW_VCAM_QUAD, MOUNT_CEILING, 90, 55, 140, 320, 320);
    EXPECT_EQ(SideOf(sPicture, 0.15, 0.15), 'W');
    EXPECT_EQ(SideOf(sPicture, 0.65, 0.15), 'S');
    EXPECT_EQ(SideOf(sPicture, 0.65, 0.65), 'E');
    EXPECT_EQ(SideOf(sPicture, 0.15, 0.65), 'N');
    for (const double x : {0.26, 0.76})
        for (const double y : {0.38, 0.88})
            EXPECT_EQ(SideOf(sPicture, x, y), 'f') << "upright: the floor is below";
}

INSTANTIATE_ENGINES(RoomSides);

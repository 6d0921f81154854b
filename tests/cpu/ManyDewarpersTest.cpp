// Many dewarpers on threads of their own, all of which share one pool.
#include "tests/support/EngineDewarper.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace
{

const int DEWARPERS = 6;
const int WIDTH = 120;
const int HEIGHT = 88;

const EViewType VIEWS[] = {VIEW_VCAM,      VIEW_PANORAMA_QUARTER, VIEW_FISHEYE,
                           VIEW_VCAM_QUAD, VIEW_PANORAMA_DUAL,    VIEW_FISHEYE_CIRCULAR};

/// One of the dewarpers: view, layers.
void Prepare(CEngineDewarper& rDewarper, int nWhich)
{
    rDewarper->SetViewType(VIEWS[nWhich]);
    rDewarper->SetLensType(LENS_DSL419);
    rDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    rDewarper->SetMaskPolygons({{{{10 + nWhich, 20}, {90, 30}, {60, 120}}, 0x104080FF}});
    SGPUString sText;
    sText.strText = std::to_string(nWhich);
    sText.nHeight = 32;
    rDewarper->SetStrings({sText});
}

void Move(CEngineDewarper& rDewarper, int nFrame)
{
    rDewarper->AbsolutePTZ(static_cast<float>(5 * (nFrame % 7)), 30.0f, 120.0f);
}

/// The seven pictures of a dewarper's way, by its caller's thread alone.
std::vector<STestImage> PicturesOf(int nWhich, CTestFrame& rFrame)
{
    CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
    oDewarper->SetThreadCount(1);
    Prepare(oDewarper, nWhich);
    EXPECT_TRUE(oDewarper.DrawFrame(rFrame));
    std::vector<STestImage> vPictures;
    for (int i = 0; i < 7; ++i) {
        Move(oDewarper, i);
        EXPECT_TRUE(oDewarper.DrawFrame(rFrame));
        vPictures.push_back(oDewarper.Picture());
    }
    return vPictures;
}

} // namespace

TEST(ManyDewarpers, ShareThePoolAndDrawRightPictures)
{
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_NV12);
    std::vector<std::vector<STestImage>> vWanted;
    for (int i = 0; i < DEWARPERS; ++i)
        vWanted.push_back(PicturesOf(i, oFrame));
    ASSERT_NE(vWanted[0][0].vPixels, vWanted[0][1].vPixels) << "not everything looks alike";
    std::atomic<int> nWrong{0};
    std::atomic<int> nDrawn{0};
    std::vector<std::thread> vThreads;
    for (int nWhich = 0; nWhich < DEWARPERS; ++nWhich)
        vThreads.emplace_back([&, nWhich] {
            CTestFrame oOwn = oFrame;
            CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
            Prepare(oDewarper, nWhich);
            nWrong += oDewarper.DrawFrame(oOwn) ? 0 : 1;
            for (int i = 0; i < 70; ++i) {
                oDewarper->SetThreadCount(1 + (i * 5 + nWhich) % 7);
                Move(oDewarper, i);
                const bool bDrawn = oDewarper.DrawFrame(oOwn);
                const std::vector<STestImage>& vPictures = vWanted[static_cast<std::size_t>(nWhich)];
                const STestImage& sWanted = vPictures[static_cast<std::size_t>(i % 7)];
                nWrong += bDrawn && oDewarper.Picture().vPixels == sWanted.vPixels ? 0 : 1;
                ++nDrawn;
            }
        });
    for (std::thread& rThread : vThreads)
        rThread.join();
    EXPECT_EQ(nWrong, 0);
    EXPECT_EQ(nDrawn, DEWARPERS * 70);
}

TEST(ManyDewarpers, OneMayBeDrawnFromManyThreads)
{
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_NV12);
    CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
    Prepare(oDewarper, 0);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    std::vector<unsigned char> vWanted(WIDTH * HEIGHT * 4);
    ASSERT_TRUE(oDewarper->DrawTo(vWanted.data(), WIDTH * 4, IMAGE_FORMAT_BGRA32));
    std::atomic<int> nWrong{0};
    std::vector<std::thread> vThreads;
    for (int nWhich = 0; nWhich < 4; ++nWhich)
        vThreads.emplace_back([&, nWhich] {
            for (int i = 0; i < 40; ++i) {
                oDewarper->SetThreadCount((i + nWhich) % 4);
                std::vector<unsigned char> vTarget(vWanted.size());
                const bool bDrawn = oDewarper->DrawTo(vTarget.data(), WIDTH * 4, IMAGE_FORMAT_BGRA32);
                nWrong += bDrawn && vTarget == vWanted ? 0 : 1;
            }
        });
    for (std::thread& rThread : vThreads)
        rThread.join();
    EXPECT_EQ(nWrong, 0);
}

/// A host that masks what is secret before the frame that shows it, and unmasks after it, from another
/// thread.
TEST(ManyDewarpers, MaskAndFrameOfAnotherThreadAreShownTogether)
{
    const auto FrameOf = [](bool bSecret) {
        STestImage sImage(64, 64);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x)
                sImage.Set(x, y, bSecret ? 255 : 90, bSecret ? 0 : 90, bSecret ? 0 : 90);
        return CTestFrame(sImage, IMAGE_FORMAT_RGB24);
    };
    CTestFrame oSecret = FrameOf(true);
    CTestFrame oPlain = FrameOf(false);
    CEngineDewarper oDewarper(ENGINE_CPU, 64, 64);
    oDewarper->SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oPlain));
    std::atomic<bool> bStop{false};
    std::thread oHost([&] {
        while (!bStop) {
            oDewarper->SetMaskPolygons({{{{0, 0}, {64, 0}, {64, 64}, {0, 64}}, 0x0000FFFF}});
            oDewarper->SetTexture(oSecret.Image(), false, nullptr, 1);
            std::this_thread::yield();
            oDewarper->SetTexture(oPlain.Image(), false, nullptr, 2);
            oDewarper->SetMaskPolygons(std::vector<SGPolygon>());
        }
    });
    int nShown = 0;
    int nSecret = 0;
    std::vector<unsigned char> vTarget(64 * 64 * 4);
    for (int i = 0; i < 3000; ++i) {
        nShown += oDewarper->DrawTo(vTarget.data(), 64 * 4, IMAGE_FORMAT_RGBA32) ? 1 : 0;
        for (std::size_t n = 0; n < vTarget.size(); n += 4)
            nSecret += vTarget[n] > 200 && vTarget[n + 1] < 60 ? 1 : 0;
    }
    bStop = true;
    oHost.join();
    EXPECT_EQ(nShown, 3000);
    EXPECT_EQ(nSecret, 0);
}

// Strings that share pixels: drawn again together, and the same picture whatever was there before.
#include "tests/gl/overlays/OverlayTools.h"

#include "dewarp/gl/GPUObjString.h"

#include <gtest/gtest.h>
#include <random>

static const int WIDTH = 160;
static const int HEIGHT = 120;

struct SOverlapCase
{
    const char* pName;
    bool bOverlay; ///< text is drawn into the frame texture
};

static const SOverlapCase CASES[] = {{"Direct", false}, {"ToTexture", true}};

class OverlapGroups : public testing::TestWithParam<SEngineCase<SOverlapCase>>
{
protected:
    void SetUp() override
    {
        if (GetParam().sCase.bOverlay) {
            SetOutput(*oView.oDewarper, PlainPicture(WIDTH, HEIGHT, 0));
            SetOutput(*oFresh.oDewarper, PlainPicture(WIDTH, HEIGHT, 0));
        }
    }

    STestImage Draw(const TStrings& vStrings)
    {
        oView.oDewarper->SetStrings(vStrings);
        return oView.Draw();
    }

    /// The picture when nothing was drawn before.
    STestImage DrawAnew(const TStrings& vStrings)
    {
        oFresh.oDewarper->SetStrings(TStrings(vStrings.size() + 1));
        oFresh.Draw();
        oFresh.oDewarper->SetStrings(vStrings);
        return oFresh.Draw();
    }

    SEngineView oView{GetParam().eEngine, AsymmetricPicture(WIDTH, HEIGHT)};
    SEngineView oFresh{GetParam().eEngine, AsymmetricPicture(WIDTH, HEIGHT)};
};

TEST_P(OverlapGroups, AStringBelowAnotherComesBackWhenThatOneMoves)
{
    const TStrings vApart = {Text("A", 0, 0, 64, 0xFF0000FF), Text("B", 100, 0, 64, 0x00FF00FF)};
    TStrings vOver = vApart;
    vOver[1].nX = 15;
    EXPECT_EQ(CompareImages(Draw(vOver), DrawAnew(vOver)).nMax, 0);
    EXPECT_EQ(CompareImages(Draw(vApart), DrawAnew(vApart)).nMax, 0);
}

TEST_P(OverlapGroups, AStringOfAGroupThatBecomesEmptyVanishes)
{
    const TStrings vBoth = {Text("MM", 0, 0, 64, 0xFF0000FF), Text("MM", 30, 20, 64, 0x00FF00FF)};
    for (const std::size_t i : {0u, 1u}) {
        Draw(vBoth);
        TStrings vOne = vBoth;
        vOne[i].strText.clear();
        EXPECT_EQ(CompareImages(Draw(vOne), DrawAnew(vOne)).nMax, 0) << i;
    }
    Draw(vBoth);
    EXPECT_EQ(CompareImages(Draw({Text("", 0, 0), Text("", 30, 20)}), AsymmetricPicture(WIDTH, HEIGHT)).nMax,
              0);
}

TEST_P(OverlapGroups, TheColourOfErasedTextLeavesNoTrace)
{
    // Grey has room for more: what is left of it would brighten the edges of the new letters.
    const unsigned int nGrey = 0x606060FF;
    for (int i = 0; i < 5; ++i) {
        const TStrings vClock = {Text(std::to_string(80 + i * 3), 4, 6, 40, nGrey)};
        const STestImage sPicture = Draw(vClock);
        const STestImage sWanted = DrawAnew(vClock);
        ASSERT_EQ(CompareImages(sPicture, sWanted).nMax, 0) << "after " << i << " changes";
    }
    const TStrings vBlue = {Text("8", 4, 6, 40, 0x0000FFFF)};
    Draw({Text("8", 4, 6, 40, 0xFF0000FF)});
    EXPECT_EQ(CompareImages(Draw(vBlue), DrawAnew(vBlue)).nMax, 0);
}

TEST_P(OverlapGroups, RandomChangesGiveTheSamePictureAsDrawingAllAnew)
{
    std::mt19937 oRandom(7);
    const auto Random = [&](int n) { return static_cast<int>(oRandom() % static_cast<unsigned int>(n)); };
    // Places of their own, so that the order in which strings are drawn does not matter.
    TStrings vStrings;
    for (int i = 0; i < 6; ++i)
        vStrings.push_back(Text("start", i % 2 * 80, i / 2 * 40, 20));
    for (int i = 0; i < 40; ++i) {
        for (int k = 0; k < 1 + Random(3); ++k) {
            SGPUString& rString = vStrings[static_cast<std::size_t>(Random(6))];
            rString.strText.assign(static_cast<std::size_t>(Random(6)), static_cast<char>('0' + Random(60)));
            rString.nHeight = 10 + Random(14);
            rString.nColor =
                static_cast<unsigned int>(Random(0xFFFFFF)) << 8 | static_cast<unsigned int>(Random(256));
        }
        ASSERT_EQ(CompareImages(Draw(vStrings), DrawAnew(vStrings)).nMax, 0) << "after " << i << " changes";
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, OverlapGroups, testing::ValuesIn(WithBothEngines(CASES)),
                         SEngineCaseName());

TEST(OverlapNumbers, AreSharedByStringsThatShareArea)
{
    SFlatView oView(AsymmetricPicture(WIDTH, HEIGHT));
    const auto Draw = [&](const TStrings& vStrings) {
        oView.oDewarper.SetStrings(vStrings);
        oView.Draw();
    };
    const auto Groups = [&] {
        std::vector<int> vGroups;
        for (const SGPUString& rString : oView.oDewarper.pStringObject->m_vStrings)
            vGroups.push_back(rString.nOverlapGroup);
        return vGroups;
    };
    // 38 x 64 each: 0 and 2 overlap, 2 and 4 do, so all three are one group; 1 and 3 only touch.
    Draw({Text("A", 0, 0), Text("B", 100, 0), Text("C", 30, 10), Text("D", 100, 64, 32), Text("E", 60, 40)});
    const std::vector<int> vGroups = Groups();
    ASSERT_EQ(vGroups.size(), 5u);
    EXPECT_NE(vGroups[0], 0);
    EXPECT_EQ(vGroups[0], vGroups[2]);
    EXPECT_EQ(vGroups[2], vGroups[4]);
    EXPECT_EQ(vGroups[1], 0);
    EXPECT_EQ(vGroups[3], 0);
    // A bridge joins two groups that had numbers already.
    Draw({Text("A", 0, 0), Text("B", 10, 0), Text("C", 100, 0), Text("D", 110, 0), Text("-----", 5, 20, 16)});
    EXPECT_NE(Groups()[0], Groups()[2]);
    Draw({Text("A", 0, 0), Text("B", 10, 0), Text("C", 100, 0), Text("D", 110, 0),
          Text("-----------", 5, 20, 16)});
    EXPECT_EQ(Groups(), std::vector<int>(5, Groups()[0]));
    EXPECT_EQ(oView.oDewarper.vStrings[3].nOverlapGroup, Groups()[0]);
}

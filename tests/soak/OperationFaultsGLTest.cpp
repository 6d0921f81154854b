// Memory that cannot be had, at every place where an operation asks for some: starting, stopping, freeing,
// setting, reading and ending. Nothing is thrown, nothing is left behind, and the dewarper goes on.

#include "tests/gl/android/TestVela.h"
#include "tests/soak/FaultSubject.h"
#include "tests/soak/ReliabilityScene.h"

#include <new>
#include <ostream>

namespace
{

/// What a host does, and what it did before.
struct SOperation
{
    const char* pName;
    void (*fDo)(CFaultSubject& rSubject);
    void (*fBefore)(CFaultSubject& rSubject) = nullptr; ///< null: nothing but two frames
};

std::ostream& operator<<(std::ostream& rStream, const SOperation& rOperation)
{
    return rStream << rOperation.pName;
}

void DrawTwice(CFaultSubject& rSubject)
{
    EXPECT_TRUE(rSubject.Draw());
    EXPECT_TRUE(rSubject.Draw());
}

/// Side information of one value for every block of 16 pixels.
void SetQuantisers(CFaultSubject& rSubject, int nBlocks, unsigned char nValue)
{
    // It is made before memory runs out: what fails is to be the library's copy.
    static CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_YUV420P);
    static unsigned char anQP[64];
    static unsigned int anMotion[64];
    static unsigned char anTypes[64];
    std::fill(std::begin(anQP), std::end(anQP), nValue);
    std::fill(std::begin(anTypes), std::end(anTypes), static_cast<unsigned char>(nValue / 16));
    SQPInfo sInfo;
    sInfo.nWidth = sInfo.nHeight = sInfo.nStride = nBlocks;
    sInfo.pQP = anQP;
    sInfo.pMotion = anMotion;
    sInfo.pMBType = anTypes;
    rSubject.Dewarper().SetTexture(oFrame.Image(), false, &sInfo, 1);
    sInfo.pQP = nullptr;
    sInfo.pMotion = nullptr;
    sInfo.pMBType = nullptr;
}

/// Four pixels, opaque.
unsigned char* OverlayPixels()
{
    static unsigned char anPixels[4 * 4 * 4];
    std::fill(std::begin(anPixels), std::end(anPixels), static_cast<unsigned char>(200));
    return anPixels;
}

void ReadImage(CFaultSubject& rSubject)
{
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* const pImage = rSubject.Dewarper().GetImage(&nSize, &nWidth, &nHeight, &nStride);
    EXPECT_TRUE(pImage == nullptr || nWidth == SUBJECT_WIDTH);
}

// Byte lists as hosts send them.
unsigned char g_aMask[] = {0, 3, 0, 10, 0, 20, 0, 60, 0, 20, 0, 35, 0, 60, 255, 0, 0, 128};
unsigned char g_aText[] = {0, 2, 'A', 'B', 0, 10, 0, 20, 0, 32, 255, 255, 255, 255, 0, 0, 0, 0};

const SOperation OPERATIONS[] = {
    {"start", [](CFaultSubject& r) { r.StartGL(); }, [](CFaultSubject& r) { r.StopGL(); }},
    {"restart", [](CFaultSubject& r) { r.StartGL(); }},
    {"stop", [](CFaultSubject& r) { r.StopGL(); }},
    {"free", [](CFaultSubject& r) { r.Dewarper().FreeOpenGLObjects(); }},
    {"frame after free", [](CFaultSubject& r) { r.Draw(); },
     [](CFaultSubject& r) { r.Dewarper().FreeOpenGLObjects(); }},
    {"reinitialise", [](CFaultSubject& r) { r.Dewarper().ReinitializeOpenGLObjects(); }},
    {"frame after reinitialise", [](CFaultSubject& r) { r.Draw(); },
     [](CFaultSubject& r) { r.Dewarper().ReinitializeOpenGLObjects(); }},
    {"size", [](CFaultSubject& r) { r.InitGL(SUBJECT_WIDTH, SUBJECT_HEIGHT); }},
    {"frame of a new size", [](CFaultSubject& r) { r.Draw(); },
     [](CFaultSubject& r) {
         r.InitGL(16, 16);
         r.Draw();
         r.InitGL(SUBJECT_WIDTH, SUBJECT_HEIGHT);
     }},
    {"first quantisers", [](CFaultSubject& r) { SetQuantisers(r, 4, 40); }},
    {"more quantisers", [](CFaultSubject& r) { SetQuantisers(r, 8, 80); },
     [](CFaultSubject& r) {
         SetQuantisers(r, 4, 40);
         DrawTwice(r);
     }},
    {"mask list",
     [](CFaultSubject& r) { r.Dewarper().SetMaskPolygons(g_aMask, static_cast<int>(sizeof g_aMask)); }},
    {"no masks", [](CFaultSubject& r) { r.Dewarper().SetMaskPolygons(nullptr, 0); }},
    {"text list",
     [](CFaultSubject& r) { r.Dewarper().SetStrings(g_aText, static_cast<int>(sizeof g_aText)); }},
    {"no text", [](CFaultSubject& r) { r.Dewarper().SetStrings(nullptr, 0); }},
    {"input overlay", [](CFaultSubject& r) { r.Dewarper().SetInputOverlay(OverlayPixels(), 4, 4, 0); },
     [](CFaultSubject& r) { r.Dewarper().SetMaskPolygons(std::vector<SGPolygon>()); }},
    {"other input overlay", [](CFaultSubject& r) { r.Dewarper().SetInputOverlay(OverlayPixels(), 2, 4, 0); },
     [](CFaultSubject& r) {
         r.Dewarper().SetMaskPolygons(std::vector<SGPolygon>());
         r.Draw();
         r.Dewarper().SetInputOverlay(OverlayPixels(), 4, 4, 0);
         DrawTwice(r);
     }},
    {"output overlay", [](CFaultSubject& r) { r.Dewarper().SetOutputOverlay(OverlayPixels(), 4, 4, 0); }},
    {"no output overlay", [](CFaultSubject& r) { r.Dewarper().SetOutputOverlay(nullptr, 0, 0, 0); }},
    {"read", ReadImage},
};

class OperationFault : public testing::TestWithParam<std::tuple<ESubject, SOperation>>
{
protected:
    std::unique_ptr<CFaultSubject> Prepared() const
    {
        std::unique_ptr<CFaultSubject> pSubject = MakeSubject(std::get<0>(GetParam()));
        DrawTwice(*pSubject);
        if (m_rOperation.fBefore != nullptr)
            m_rOperation.fBefore(*pSubject);
        return pSubject;
    }

    /// What comes after an operation: a start where there is none, and a frame.
    static std::vector<unsigned char> Onwards(CFaultSubject& rSubject)
    {
        if (!rSubject.Draw()) {
            EXPECT_TRUE(rSubject.StartGL());
            EXPECT_TRUE(rSubject.Draw());
        }
        return rSubject.Picture();
    }

    /// The picture without the operation, and with it.
    void DrawGolden(std::vector<unsigned char>& rBefore, std::vector<unsigned char>& rAfter) const
    {
        const std::unique_ptr<CFaultSubject> pSubject = Prepared();
        rBefore = Onwards(*pSubject);
        const std::unique_ptr<CFaultSubject> pOther = Prepared();
        m_rOperation.fDo(*pOther);
        rAfter = Onwards(*pOther);
        ASSERT_FALSE(rBefore.empty());
        ASSERT_FALSE(rAfter.empty());
    }

    const SOperation& m_rOperation = std::get<1>(GetParam());
};

/// Which places are tried: all of the first ones, then some; all in a long run.
int NextPlace(int nPlace)
{
    return nPlace < 8 || IsLongRun() ? nPlace + 1 : nPlace + 29;
}

std::string NameOf(const testing::TestParamInfo<std::tuple<ESubject, SOperation>>& rInfo)
{
    std::string strName = std::get<0>(rInfo.param) == SUBJECT_DESKTOP ? "desktop " : "buffers ";
    strName += std::get<1>(rInfo.param).pName;
    std::replace(strName.begin(), strName.end(), ' ', '_');
    return strName;
}

} // namespace

TEST_P(OperationFault, LeavesTheStateThereWasAndNothingElse)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    std::vector<unsigned char> vBefore;
    std::vector<unsigned char> vAfter;
    DrawGolden(vBefore, vAfter);
    const SLiving sLiving;
    for (auto [nPlace, bReached] = std::pair(0, true); bReached; nPlace = NextPlace(nPlace)) {
        ASSERT_LT(nPlace, 2000);
        SCOPED_TRACE("allocation " + std::to_string(nPlace));
        const long nBlocks = HeapBlocks();
        {
            CLogCapture oLog;
            const std::unique_ptr<CFaultSubject> pSubject = Prepared();
            FailAllocation(nPlace);
            m_rOperation.fDo(*pSubject);
            bReached = AllocationHasFailed();
            FailAllocation(-1);
            const std::vector<unsigned char> vNow = Onwards(*pSubject);
            EXPECT_TRUE(vNow == vAfter || (bReached && vNow == vBefore)) << oLog.Text();
            EXPECT_EQ(oLog.Contains("out of memory"), bReached) << oLog.Text();
            // The same again, with memory.
            m_rOperation.fDo(*pSubject);
            EXPECT_EQ(Onwards(*pSubject), vAfter);
            EXPECT_NO_GL_ERROR();
        }
        EXPECT_EQ(SLiving(), sLiving);
        EXPECT_EQ(HeapBlocks(), nBlocks);
    }
}

INSTANTIATE_TEST_SUITE_P(Both, OperationFault,
                         testing::Combine(testing::Values(SUBJECT_DESKTOP, SUBJECT_BUFFERS),
                                          testing::ValuesIn(OPERATIONS)),
                         NameOf);

class EndFault : public testing::TestWithParam<ESubject>
{
};

// A destructor has no way to tell of anything: it must simply be able to do without memory.
TEST_P(EndFault, ADewarperEndsWithoutMemory)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CLogCapture oLog;
    // What is made once for a process is made now.
    DrawTwice(*MakeSubject(GetParam()));
    const SLiving sLiving;
    const long nBlocks = HeapBlocks();
    for (const bool bStopped : {false, true})
        for (auto [nPlace, bReached] = std::pair(0, true); bReached; ++nPlace) {
            SCOPED_TRACE("allocation " + std::to_string(nPlace));
            ASSERT_LT(nPlace, 100);
            const std::unique_ptr<CFaultSubject> pSubject = MakeSubject(GetParam());
            DrawTwice(*pSubject);
            if (bStopped)
                pSubject->StopGL();
            FailAllocation(nPlace);
            pSubject->Destroy();
            bReached = AllocationHasFailed();
            FailAllocation(-1);
            EXPECT_EQ(SLiving(), sLiving);
        }
    EXPECT_EQ(HeapBlocks(), nBlocks);
    EXPECT_NO_GL_ERROR();
}

// A constructor can only throw: then nothing of the dewarper is left.
TEST_P(EndFault, ADewarperThatCannotBeMadeLeavesNothing)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    const auto Make = [] {
        if (GetParam() == SUBJECT_DESKTOP)
            CCustomGPUDewarperOffscreen oDewarper;
        else
            CCustomGPUDewarperVela oDewarper;
    };
    CLogCapture oLog;
    Make();
    const long nBlocks = HeapBlocks();
    int nPlace = 0;
    for (bool bReached = true; bReached; ++nPlace) {
        ASSERT_LT(nPlace, 100);
        bool bThrown = false;
        FailAllocation(nPlace);
        try {
            Make();
        } catch (const std::bad_alloc&) {
            bThrown = true;
        }
        bReached = AllocationHasFailed();
        FailAllocation(-1);
        EXPECT_EQ(bThrown, bReached) << nPlace;
        EXPECT_EQ(HeapBlocks(), nBlocks) << nPlace;
    }
    EXPECT_GT(nPlace, 1);
}

INSTANTIATE_TEST_SUITE_P(Both, EndFault, testing::Values(SUBJECT_DESKTOP, SUBJECT_BUFFERS),
                         [](const auto& rInfo) {
                             return rInfo.param == SUBJECT_DESKTOP ? "desktop" : "buffers";
                         });

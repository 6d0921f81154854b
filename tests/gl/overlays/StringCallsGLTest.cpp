// Text: which draw calls a list of strings makes, and which it saves.
#include "tests/gl/overlays/OverlayTools.h"

#include "dewarp/gl/GPUObjString.h"
#include "dewarp/tables/GPUFont.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>
#include <limits>

static const int WIDTH = 160;
static const int HEIGHT = 120;

/// A draw call that went into one of the two text images.
struct SGlyphDraw
{
    int nFirst;
    int x;
    int y;
    int w;
    int h;

    bool operator==(const SGlyphDraw& sOther) const = default;
};

static std::ostream& operator<<(std::ostream& oStream, const SGlyphDraw& s)
{
    return oStream << "glyph " << s.nFirst / 6 << " at " << s.x << ", " << s.y << " size " << s.w << " x "
                   << s.h;
}

class StringCalls : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(oView.oDewarper.DrawFrame(oView.oFrame)); }

    void Draw(const TStrings& vStrings)
    {
        CGLRecorder::Get().Start();
        oDewarper.SetStrings(vStrings);
        ASSERT_TRUE(oDewarper.DrawGLScene(false));
    }

    /// Draw calls of the last frame with the given texture as target, the text program in use.
    std::vector<SGlyphDraw> DrawsInto(unsigned int nTexture) const
    {
        std::vector<SGlyphDraw> vDraws;
        unsigned int nTarget = 0;
        unsigned int nProgram = 0;
        int anPort[4] = {};
        for (const SGLCall& sCall : CGLRecorder::Get().Calls()) {
            const std::string strName = sCall.pName;
            if (strName == "glFramebufferTexture2D")
                nTarget = static_cast<unsigned int>(sCall.Int(3));
            else if (strName == "glUseProgram")
                nProgram = static_cast<unsigned int>(sCall.Int(0));
            else if (strName == "glViewport")
                for (int i = 0; i < 4; ++i)
                    anPort[i] = sCall.Int(i);
            else if (strName == "glDrawArrays" && nTarget == nTexture &&
                     nProgram == oDewarper.sStringShader.nProgram) {
                EXPECT_EQ(sCall.Int(0), GL_TRIANGLES);
                EXPECT_EQ(sCall.Int(2), 6);
                vDraws.push_back({sCall.Int(1), anPort[0], anPort[1], anPort[2], anPort[3]});
            }
        }
        return vDraws;
    }
    std::vector<SGlyphDraw> Written() const { return DrawsInto(oDewarper.nStringTextureB); }
    std::vector<SGlyphDraw> CopiedBack() const { return DrawsInto(oDewarper.nStringTextureA); }

    SFlatView oView{AsymmetricPicture(WIDTH, HEIGHT)};
    CCustomGPUDewarper& oDewarper = oView.oDewarper;
};

TEST_F(StringCalls, EachCharacterIsAQuadOfTheFontInAViewportOfItsOwn)
{
    unsigned char acBytes[] = {0, 2, 0x41, 0x42, 0, 10, 0, 20, 0, 32, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0};
    CGLRecorder::Get().Start();
    oDewarper.SetStrings(acBytes, static_cast<int>(sizeof acBytes));
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(Written(), (std::vector<SGlyphDraw>{{33 * 6, 10, 20, 19, 32}, {34 * 6, 29, 20, 19, 32}}));
    EXPECT_EQ(CopiedBack(), (std::vector<SGlyphDraw>{{0, 10, 20, 38, 32}}));
    const SGPUString& rString = oDewarper.vStrings[0];
    EXPECT_EQ((std::vector<int>{rString.nDrawnX, rString.nDrawnY, rString.nDrawnW, rString.nDrawnH}),
              (std::vector<int>{10, 20, 38, 32}));
    // Over the view comes an area of twice the size around the first corner.
    const std::vector<SGLCall> vPorts = CGLRecorder::Get().Named("glViewport");
    ASSERT_GE(vPorts.size(), 3u);
    bool bFound = false;
    for (const SGLCall& sCall : vPorts)
        bFound = bFound || (sCall.Int(0) == 10 - 38 && sCall.Int(1) == 20 - 32 && sCall.Int(2) == 76 &&
                            sCall.Int(3) == 64);
    EXPECT_TRUE(bFound) << CGLRecorder::Get().Dump();
    // The whole target is what a frame leaves behind.
    EXPECT_EQ(vPorts.back().Int(2), WIDTH);
    EXPECT_EQ(vPorts.back().Int(3), HEIGHT);
}

TEST_F(StringCalls, RowsCountFromTheOtherEndWhenAnOutputOverlayIsShown)
{
    SetOutput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0));
    Draw({Text("A", 10, 20, 32)});
    EXPECT_EQ(Written(), (std::vector<SGlyphDraw>{{33 * 6, 10, HEIGHT - 32 - 20, 19, 32}}));
    EXPECT_EQ(oDewarper.vStrings[0].nDrawnY, HEIGHT - 32 - 20);
}

TEST_F(StringCalls, SpaceIsTheFirstGlyphAndTheBlockTheLast)
{
    Draw({Text(" \x7F", 0, 0, 64)});
    EXPECT_EQ(Written(), (std::vector<SGlyphDraw>{{0, 0, 0, 38, 64}, {570, 38, 0, 38, 64}}));
}

TEST_F(StringCalls, CodesOutsideTheFontAdvanceAndDrawNothing)
{
    Draw({Text("A\x1F\x80\xFF\n\xC3\xA4" + std::string(1, '\0') + "B", 5, 6, 16)});
    EXPECT_EQ(Written(), (std::vector<SGlyphDraw>{{33 * 6, 5, 6, 9, 16}, {34 * 6, 5 + 8 * 9, 6, 9, 16}}));
    EXPECT_EQ(oDewarper.vStrings[0].nDrawnW, 9 * 9);
}

TEST_F(StringCalls, AStringCentredOnItsAnchorStartsHalfItsLengthBefore)
{
    SGPUString sString = Text("ABC", 80, 0);
    sString.nHAlign = 1;
    Draw({sString});
    ASSERT_EQ(Written().size(), 3u);
    EXPECT_EQ(Written()[0].x, 80 - 57);
    EXPECT_EQ(Written()[0].w, 38);
}

TEST_F(StringCalls, TheFontAndItsQuadsAreUploadedOnce)
{
    Draw({Text("12:00:00", 0, 0, 16)});
    int nFonts = 0;
    int nMeshes = 0;
    for (const SGLCall& sCall : CGLRecorder::Get().Named("glTexImage2D"))
        nFonts += sCall.Int(2) == GL_LUMINANCE_ALPHA && sCall.Int(3) == 608 && sCall.Int(4) == 384 ? 1 : 0;
    for (const SGLCall& sCall : CGLRecorder::Get().Named("glBufferData"))
        nMeshes += sCall.Int(1) == 96 * 6 * 12 || sCall.Int(1) == 96 * 6 * 8 ? 1 : 0;
    EXPECT_EQ(nFonts, 1);
    EXPECT_EQ(nMeshes, 2);
    for (int i = 0; i < 20; ++i) {
        Draw({Text("12:00:" + std::to_string(10 + i), 0, 0, 16)});
        EXPECT_EQ(NamesTouched(), 0) << CGLRecorder::Get().Dump();
        EXPECT_EQ(CGLRecorder::Get().Count("glBufferData"), 0);
        EXPECT_EQ(CGLRecorder::Get().Count("glTexImage2D") + CGLRecorder::Get().Count("glTexSubImage2D"), 0);
        EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), 0);
    }
    // Also when asked directly.
    CCGPUObjString oObject;
    CGLRecorder::Get().Start();
    for (int i = 0; i < 5; ++i)
        oObject.Activate(oDewarper.pGeometry, oDewarper.pStringParams, GPU_FONT::nCols, GPU_FONT::nRows);
    EXPECT_EQ(CGLRecorder::Get().Count("glBufferData"), 2);
    EXPECT_EQ(oObject.m_nVertexCount, 576);
}

TEST_F(StringCalls, AStringThatDoesNotChangeIsNotDrawnAgain)
{
    const TStrings vStrings = {Text("one", 0, 0, 16), Text("two", 0, 50, 16)};
    Draw(vStrings);
    EXPECT_EQ(Written().size(), 6u);
    Draw(vStrings);
    EXPECT_TRUE(Written().empty() && CopiedBack().empty());
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1 + 1 + 2)
        << "view, copy, and two areas laid over it";
    CGLRecorder::Get().Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 1 + 1 + 2);
    EXPECT_EQ(NamesTouched(), 0);
    // The drawn rectangle is what the drawing tells, not what the host says.
    TStrings vSame = vStrings;
    vSame[0].nDrawnX = 77;
    vSame[1].nOverlapGroup = 5;
    Draw(vSame);
    EXPECT_TRUE(Written().empty());
    EXPECT_EQ(oDewarper.vStrings[0].nDrawnX, 0);
}

TEST_F(StringCalls, OnlyTheStringThatChangedIsErasedAndDrawn)
{
    Draw({Text("one", 0, 0, 16), Text("two", 0, 50, 16)});
    Draw({Text("one", 0, 0, 16), Text("TWO!", 3, 60, 16)});
    // Erased with the solid cell in both images, over the old rectangle; then drawn and copied back.
    EXPECT_EQ(Written(), (std::vector<SGlyphDraw>{{570, 0, 50, 27, 16},
                                                  {('T' - 32) * 6, 3, 60, 9, 16},
                                                  {('W' - 32) * 6, 12, 60, 9, 16},
                                                  {('O' - 32) * 6, 21, 60, 9, 16},
                                                  {('!' - 32) * 6, 30, 60, 9, 16}}));
    EXPECT_EQ(CopiedBack(), (std::vector<SGlyphDraw>{{570, 0, 50, 27, 16}, {0, 3, 60, 36, 16}}));
    EXPECT_EQ(CGLRecorder::Get().Count("glClearBufferfv"), 0);
}

TEST_F(StringCalls, AnotherNumberOfStringsOrAnotherTargetDrawsAllAnew)
{
    const TStrings vOne = {Text("one", 0, 0, 16)};
    Draw(vOne);
    Draw({vOne[0], Text("two", 0, 50, 16)});
    EXPECT_EQ(CGLRecorder::Get().Count("glClearBufferfv"), 2);
    EXPECT_EQ(Written().size(), 6u);
    Draw(vOne);
    EXPECT_EQ(CGLRecorder::Get().Count("glClearBufferfv"), 2);
    EXPECT_EQ(Written().size(), 3u);
    ASSERT_TRUE(oView.oDewarper.InitGL(100, 90));
    CGLRecorder::Get().Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false)); // no new list: the target alone changed
    EXPECT_EQ(CGLRecorder::Get().Count("glClearBufferfv"), 2);
    EXPECT_EQ(Written().size(), 3u);
    EXPECT_EQ(oDewarper.anTextureUnitSize[12][0], 100);
}

TEST_F(StringCalls, TheNumberOfStringsDrawnIsReturned)
{
    TStrings vStrings = {Text("one", 0, 0, 16), Text("two", 0, 50, 16), Text("", 9, 9, 16)};
    Draw(vStrings);
    const auto Update = [&](bool bFull) {
        glBindFramebuffer(GL_FRAMEBUFFER, oDewarper.nFrameBuffer);
        glUseProgram(oDewarper.sStringShader.nProgram);
        oDewarper.pStringObject->LoadVertexAndTextureCoordinates(&oDewarper.sStringShader);
        return oDewarper.pStringObject->DrawStringsToOverlay(
            vStrings, oDewarper.pStringParams, oDewarper.pStringMatrices, &oDewarper.sStringShader,
            oDewarper.nStringTextureA, oDewarper.nStringTextureB, oDewarper.nFrameTexture,
            oDewarper.nFrameTexture2, bFull, false);
    };
    EXPECT_EQ(Update(false), 0);
    vStrings[1].nColor = 0xFF0000FF;
    EXPECT_EQ(Update(false), 1);
    EXPECT_EQ(Update(true), 3);
    vStrings.pop_back();
    EXPECT_EQ(Update(false), 2);
}

TEST_F(StringCalls, WhatCannotBeSeenIsNotDrawn)
{
    const int nMost = std::numeric_limits<int>::max();
    const int nLeast = std::numeric_limits<int>::min();
    std::vector<SGPUString> vHidden = {
        Text("A", 0, 0, 0),
        Text("A", 0, 0, -5),
        Text("A", 0, 0, nLeast),
        Text("A", WIDTH, 0, 16),
        Text("A", 0, HEIGHT, 16),
        Text("A", -9, 0, 16),
        Text("A", 0, -16, 16),
        Text("A", nMost, nMost, 16),
        Text("A", nLeast, nLeast, 16),
        Text("AAAA", nMost - 1, 0, 16),
        Text("", 5, 5, 16),
        Text("A", 0, 0, nMost),
        Text("A", 0, 0, 1),
    };
    for (int nAlign = 0; nAlign < 3; ++nAlign)
        for (const bool bFarEnd : {false, true}) {
            SGPUString sFar = Text("far away", bFarEnd ? nMost : nLeast, bFarEnd ? nMost : nLeast, 30);
            sFar.nHAlign = sFar.nVAlign = nAlign;
            sFar.nHRef = sFar.nVRef = 2;
            vHidden.push_back(sFar);
        }
    for (const bool bToTexture : {false, true}) {
        if (bToTexture)
            SetOutput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0));
        for (const SGPUString& rString : vHidden) {
            Draw({rString});
            EXPECT_TRUE(Written().empty() && CopiedBack().empty())
                << rString.strText << " " << rString.nX << " " << rString.nY << " " << rString.nHeight;
            EXPECT_EQ(oDewarper.vStrings[0].nDrawnW, 0);
        }
    }
}

TEST_F(StringCalls, VeryLongAndVeryHighStringsStayWithinWhatGLTakes)
{
    std::string strLong(65535, 'x');
    strLong.replace(30000, 3, "ABC");
    const int nHalf = 30000 * 19;
    for (const bool bToTexture : {false, true}) {
        if (bToTexture)
            SetOutput(oDewarper, PlainPicture(WIDTH, HEIGHT, 0));
        Draw({Text(strLong, -nHalf, 10, 32), Text("M", -100, -300, 1000), Text(strLong, 5, -2000, 8192)});
        for (const std::vector<SGlyphDraw>& rDraws : {Written(), CopiedBack()})
            for (const SGlyphDraw& s : rDraws) {
                EXPECT_GE(s.x, -8192);
                EXPECT_GE(s.y, -8192);
                EXPECT_LE(s.w, 16384);
                EXPECT_LE(s.h, 16384);
            }
        // Nine of 65,535 characters can be seen, and they stand where they belong.
        ASSERT_GE(Written().size(), 9u);
        EXPECT_EQ(Written()[0].nFirst, ('A' - 32) * 6);
        EXPECT_EQ(Written()[0].x, 0);
        EXPECT_EQ(Written()[8].x, 8 * 19);
        EXPECT_LT(Written().size(), 12u);
    }
}

TEST_F(StringCalls, AHundredThousandHiddenCharactersAreNoWork)
{
    TStrings vStrings(16, Text(std::string(65535, 'x'), 0, HEIGHT - 1, 64));
    Draw(vStrings);
    EXPECT_LE(Written().size(), 16u * 5u);
}

TEST_F(StringCalls, AHundredThousandHiddenStringsAreNoWorkEither)
{
    TStrings vStrings(100000, Text("x", 0, HEIGHT, 64));
    vStrings[5] = Text("A", -10, 0, 64); // an empty rectangle at 0, 0 would lie inside
    Draw(vStrings);
    vStrings[5].strText = "B";
    Draw(vStrings);
    EXPECT_EQ(Written(), (std::vector<SGlyphDraw>{{570, -10, 0, 38, 64}, {34 * 6, -10, 0, 38, 64}}));
    EXPECT_EQ(oDewarper.vStrings[5].nOverlapGroup, 0);
}

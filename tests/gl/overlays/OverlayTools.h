/// \file
/// What the tests of overlays, masks and text share: frames, overlay pictures, text drawn by hand.
#pragma once

#include "dewarp/overlays/SGPUString.h"
#include "dewarp/records/SGRect.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/TestDewarper.h"

#include <functional>
#include <string>
#include <vector>

using TPolygons = std::vector<SGPolygon>;
using TStrings = std::vector<SGPUString>;

/// One colour, 0xRRGGBBAA, everywhere.
STestImage PlainPicture(int nWidth, int nHeight, unsigned int nColor);
/// No two pixels next to each other look alike, no row like its mirror image. Opaque unless nAlpha is given.
STestImage PatternPicture(int nWidth, int nHeight, int nAlpha = 255);
/// Pixels inside a rectangle get one colour.
void FillRect(STestImage& sImage, const SGRect& sRect, unsigned int nColor);

template <class D>
int SetInput(D& rDewarper, STestImage sImage)
{
    return rDewarper.SetInputOverlay(sImage.vPixels.data(), sImage.nWidth, sImage.nHeight, 0);
}

template <class D>
int SetOutput(D& rDewarper, STestImage sImage, std::vector<SGRect> vRects = {})
{
    return rDewarper.SetOutputOverlay(sImage.vPixels.data(), sImage.nWidth, sImage.nHeight, 0,
                                      std::move(vRects));
}

/// A dewarper that shows a frame pixel by pixel, and that frame.
struct SFlatView
{
    explicit SFlatView(const STestImage& sFrame, int nFormat = IMAGE_FORMAT_RGB24);
    /// Draws, and gives the picture.
    STestImage Draw();

    CTestDewarper oDewarper;
    CTestFrame oFrame;
};

/// The same with either engine.
struct SEngineView
{
    SEngineView(EDewarpEngine eEngine, const STestImage& sFrame, int nFormat = IMAGE_FORMAT_RGB24);
    STestImage Draw();

    CEngineDewarper oDewarper;
    CTestFrame oFrame;
};

/// A string that starts at a place from the target's top left.
SGPUString Text(const std::string& strText, int x, int y, int nHeight = 64, unsigned int nColor = 0xFFFFFFFF);
/// The rectangle that a string covers, by the rules of its anchor.
SGRect TextRect(const SGPUString& sString, int nWidth, int nHeight);
/// Coverage, 0..255, of a character's cell pixel at a height of 64 or 32.
double Coverage(char cCharacter, int nHeight, int x, int y);
/// Draws strings over a picture: heights 32 and 64 only, strings apart from each other.
void DrawText(STestImage& sImage, const TStrings& vStrings);
/// Lays an overlay of the same size over a picture.
void Blend(STestImage& sImage, const STestImage& sOverlay);

/// All GL calls since the recorder was started.
int GLCalls();
/// Names made or deleted since the recorder was started.
int NamesTouched();

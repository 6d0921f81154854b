#include "tests/gl/overlays/OverlayTools.h"

#include "dewarp/tables/GPUFont.h"

#include <cmath>

STestImage PlainPicture(int nWidth, int nHeight, unsigned int nColor)
{
    STestImage sImage(nWidth, nHeight);
    FillRect(sImage, {0, 0, nWidth, nHeight}, nColor);
    return sImage;
}

STestImage PatternPicture(int nWidth, int nHeight, int nAlpha)
{
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            sImage.Set(x, y, (x * 37 + y * 11) & 255, (x * 5 + y * 59 + 80) & 255,
                       (y * 7 + (x & 1) * 90) & 255, nAlpha);
    return sImage;
}

void FillRect(STestImage& sImage, const SGRect& sRect, unsigned int nColor)
{
    for (int y = sRect.y; y < sRect.y + sRect.height; ++y)
        for (int x = sRect.x; x < sRect.x + sRect.width; ++x)
            if (x >= 0 && y >= 0 && x < sImage.nWidth && y < sImage.nHeight)
                sImage.Set(x, y, static_cast<int>(nColor >> 24), static_cast<int>(nColor >> 16 & 255),
                           static_cast<int>(nColor >> 8 & 255), static_cast<int>(nColor & 255));
}

SFlatView::SFlatView(const STestImage& sFrame, int nFormat)
    : oDewarper(sFrame.nWidth, sFrame.nHeight), oFrame(sFrame, nFormat)
{
    oDewarper.SetViewType(VIEW_FISHEYE);
}

STestImage SFlatView::Draw()
{
    return oDewarper.DrawFrame(oFrame) ? oDewarper.Picture() : STestImage();
}

SEngineView::SEngineView(EDewarpEngine eEngine, const STestImage& sFrame, int nFormat)
    : oDewarper(eEngine, sFrame.nWidth, sFrame.nHeight), oFrame(sFrame, nFormat)
{
    oDewarper->SetViewType(VIEW_FISHEYE);
}

STestImage SEngineView::Draw()
{
    return oDewarper.DrawFrame(oFrame) ? oDewarper.Picture() : STestImage();
}

SGPUString Text(const std::string& strText, int x, int y, int nHeight, unsigned int nColor)
{
    SGPUString sString;
    sString.strText = strText;
    sString.nX = x;
    sString.nY = y;
    sString.nHeight = nHeight;
    sString.nColor = nColor;
    return sString;
}

SGRect TextRect(const SGPUString& sString, int nWidth, int nHeight)
{
    const int w = static_cast<int>(sString.strText.size()) * (sString.nHeight * 38 / 64);
    const int h = sString.nHeight;
    const int anX[3] = {0, nWidth / 2, nWidth};
    const int anY[3] = {0, nHeight / 2, nHeight};
    const int anLeft[3] = {0, w / 2, w};
    const int anUp[3] = {0, h / 2, h};
    return {sString.nX + anX[sString.nHRef] - anLeft[sString.nHAlign],
            sString.nY + anY[sString.nVRef] - anUp[sString.nVAlign], w, h};
}

double Coverage(char cCharacter, int nHeight, int x, int y)
{
    const int nGlyph = static_cast<unsigned char>(cCharacter) - 32;
    if (nGlyph < 0 || nGlyph > 95)
        return 0.0;
    const auto Texel = [&](int nX, int nY) {
        const int nRow = nGlyph / 16 * 64 + nY;
        const int nCol = nGlyph % 16 * 38 + nX;
        return static_cast<double>(GPU_FONT::pGPU_FONT[(nRow * 608 + nCol) * 2 + 1]);
    };
    if (nHeight == 64)
        return Texel(x, y);
    // Half the size: the middle of a pixel lies between four texels.
    return (Texel(2 * x, 2 * y) + Texel(2 * x + 1, 2 * y) + Texel(2 * x, 2 * y + 1) +
            Texel(2 * x + 1, 2 * y + 1)) /
           4.0;
}

/// P (1 - a) + O a, rounded.
static void BlendPixel(unsigned char* pPixel, const double* pOver, double fAlpha)
{
    for (int i = 0; i < 3; ++i)
        pPixel[i] = static_cast<unsigned char>(std::lround(pPixel[i] * (1.0 - fAlpha) + pOver[i] * fAlpha));
}

void DrawText(STestImage& sImage, const TStrings& vStrings)
{
    for (const SGPUString& rString : vStrings) {
        const SGRect sRect = TextRect(rString, sImage.nWidth, sImage.nHeight);
        const int w = rString.nHeight * 38 / 64;
        const double afColor[3] = {static_cast<double>(rString.nColor >> 24),
                                   static_cast<double>(rString.nColor >> 16 & 255),
                                   static_cast<double>(rString.nColor >> 8 & 255)};
        for (int y = 0; y < sRect.height; ++y)
            for (int x = 0; x < sRect.width; ++x) {
                const int nX = sRect.x + x;
                const int nY = sRect.y + y;
                if (nX < 0 || nY < 0 || nX >= sImage.nWidth || nY >= sImage.nHeight)
                    continue;
                const char c = rString.strText[static_cast<std::size_t>(x / w)];
                // The text's image keeps its alpha in 8 bits.
                const double fAlpha = std::round(Coverage(c, rString.nHeight, x % w, y) *
                                                 static_cast<double>(rString.nColor & 255) / 255.0) /
                                      255.0;
                BlendPixel(sImage.At(nX, nY), afColor, fAlpha);
            }
    }
}

void Blend(STestImage& sImage, const STestImage& sOverlay)
{
    for (int y = 0; y < sImage.nHeight; ++y)
        for (int x = 0; x < sImage.nWidth; ++x) {
            const unsigned char* p = sOverlay.At(x, y);
            const double afOver[3] = {static_cast<double>(p[0]), static_cast<double>(p[1]),
                                      static_cast<double>(p[2])};
            BlendPixel(sImage.At(x, y), afOver, p[3] / 255.0);
        }
}

int GLCalls()
{
    return CGLRecorder::Get().CountPrefix("gl");
}

int NamesTouched()
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    return oRecorder.CountPrefix("glGenT") + oRecorder.CountPrefix("glGenB") +
           oRecorder.CountPrefix("glGenF") + oRecorder.CountPrefix("glGenR") +
           oRecorder.CountPrefix("glGenV") + oRecorder.CountPrefix("glDelete") +
           oRecorder.CountPrefix("glCreate");
}

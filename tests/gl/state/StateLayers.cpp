// Overlays, masks and text.
#include "tests/gl/state/StateCalls.h"

#include "dewarp/overlays/MaskPolygonFormat.h"
#include "dewarp/overlays/StringFormat.h"

#include <algorithm>

SOverlayImage::SOverlayImage(int nCols, int nRows, unsigned int nShade)
    : nWidth(nCols), nHeight(nRows),
      vPixels(nCols < 1 || nRows < 1 ? 4U
                                     : static_cast<std::size_t>(nCols) * static_cast<std::size_t>(nRows) * 4)
{
    for (std::size_t i = 0; i < vPixels.size(); ++i)
        vPixels[i] = static_cast<unsigned char>(i * 7 + nShade * 41 + (i % 4 == 3 ? i / 4 % 3 * 80 : 0));
}

/// Sizes of which some are refused.
static SOverlayImage ReadOverlay(CFuzzBytes& rBytes, std::string& strWords)
{
    static const int SIZES[][2] = {{16, 12}, {24, 18}, {16, 12}, {64, 48},
                                   {5, 7},   {-1, 4},  {4, 0},   {16385, 1}};
    const auto& anSize = SIZES[rBytes.Byte() % std::size(SIZES)];
    const unsigned int nShade = rBytes.Byte();
    strWords =
        std::to_string(anSize[0]) + " x " + std::to_string(anSize[1]) + ", shade " + std::to_string(nShade);
    return SOverlayImage(anSize[0], anSize[1], nShade);
}

SStateCall InputOverlayCall(CFuzzBytes& rBytes)
{
    if (rBytes.Byte() % 4 == 3)
        return MakeCall("SetInputOverlay(null)", [](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.SetInputOverlay(nullptr, 0, 0, 0); });
            rPlayer.TakeInput(SOverlayImage());
        });
    std::string strWords;
    const SOverlayImage sImage = ReadOverlay(rBytes, strWords);
    return MakeCall("SetInputOverlay(" + strWords + ")", [=](CStatePlayer& rPlayer) {
        SOverlayImage sGiven = sImage;
        if (rPlayer.With([&](auto& d) {
                return d.SetInputOverlay(sGiven.vPixels.data(), sGiven.nWidth, sGiven.nHeight, 0);
            }) == 1)
            rPlayer.TakeInput(sImage);
    });
}

/// The overlay after some of its pixels were given: what was never given is transparent.
static SOverlayImage Combined(const SOverlayImage& sOld, const SOverlayImage& sNew,
                              const std::vector<SGRect>& vRects)
{
    if (vRects.empty())
        return sNew;
    SOverlayImage sResult = sOld;
    if (sOld.nWidth != sNew.nWidth || sOld.nHeight != sNew.nHeight) {
        sResult = sNew;
        std::fill(sResult.vPixels.begin(), sResult.vPixels.end(), static_cast<unsigned char>(0));
    }
    for (const SGRect& rRect : vRects)
        for (int y = std::max(rRect.y, 0); y < std::min(rRect.y + rRect.height, sNew.nHeight); ++y)
            for (int x = std::max(rRect.x, 0); x < std::min(rRect.x + rRect.width, sNew.nWidth); ++x) {
                const auto nAt = static_cast<std::ptrdiff_t>(y * sNew.nWidth + x) * 4;
                std::copy_n(sNew.vPixels.begin() + nAt, 4, sResult.vPixels.begin() + nAt);
            }
    return sResult;
}

SStateCall OutputOverlayCall(CFuzzBytes& rBytes)
{
    if (rBytes.Byte() % 4 == 3)
        return MakeCall("SetOutputOverlay(null)", [](CStatePlayer& rPlayer) {
            rPlayer.With([&](auto& d) { return d.SetOutputOverlay(nullptr, 0, 0, 0, {}); });
            rPlayer.Given().sOutput = SOverlayImage();
        });
    std::string strWords;
    const SOverlayImage sImage = ReadOverlay(rBytes, strWords);
    std::vector<SGRect> vRects(rBytes.Byte() % 4);
    for (SGRect& rRect : vRects) {
        rRect = {rBytes.Between(-4, 20), rBytes.Between(-4, 20), rBytes.Between(-1, 12),
                 rBytes.Between(-1, 12)};
        strWords += ", {" + std::to_string(rRect.x) + ", " + std::to_string(rRect.y) + ", " +
                    std::to_string(rRect.width) + ", " + std::to_string(rRect.height) + "}";
    }
    return MakeCall("SetOutputOverlay(" + strWords + ")", [=](CStatePlayer& rPlayer) {
        SOverlayImage sGiven = sImage;
        SOverlayImage& rOld = rPlayer.Given().sOutput;
        if (rPlayer.With([&](auto& d) {
                return d.SetOutputOverlay(sGiven.vPixels.data(), sGiven.nWidth, sGiven.nHeight, 0, vRects);
            }) == 1)
            rOld = Combined(rOld, sImage, vRects);
    });
}

static const unsigned int COLOURS[] = {0xFF0000FF, 0x00FF0080, 0x208040FF,
                                       0xFFFFFFFF, 0x00000000, 0xC0402040};

SStateCall MaskCall(CFuzzBytes& rBytes)
{
    std::vector<SGPolygon> vMasks(rBytes.Byte() % 4);
    std::string strWords;
    for (SGPolygon& rMask : vMasks) {
        rMask.nColor = COLOURS[rBytes.Byte() % std::size(COLOURS)];
        rMask.vPoints.resize(2 + rBytes.Byte() % 5);
        strWords += " {colour " + std::to_string(rMask.nColor) + ":";
        for (SGPoint& rPoint : rMask.vPoints) {
            rPoint = {rBytes.Between(-8, 50), rBytes.Between(-8, 50)};
            strWords += " (" + std::to_string(rPoint.x) + ", " + std::to_string(rPoint.y) + ")";
        }
        strWords += "}";
    }
    const bool bBytes = rBytes.Byte() % 4 == 3;
    return MakeCall("SetMaskPolygons(" + strWords + " )" + (bBytes ? " as bytes" : ""),
                    [=](CStatePlayer& rPlayer) {
                        std::vector<unsigned char> vBytes = BuildMaskPolygons(vMasks);
                        if (bBytes)
                            rPlayer.With([&](auto& d) {
                                return d.SetMaskPolygons(vBytes.data(), static_cast<int>(vBytes.size()));
                            });
                        else
                            rPlayer.With([&](auto& d) { return d.SetMaskPolygons(vMasks); });
                        rPlayer.Given().vMasks = vMasks;
                        rPlayer.Given().bMasksChanged = true;
                    });
}

static SGPUString ReadString(CFuzzBytes& rBytes, std::string& strWords)
{
    static const char* const TEXTS[] = {"12:00", "A", "door 3", "", "i\x7f\x01", "wwww"};
    static const int HEIGHTS[] = {16, 32, 12, 64, 9, 0};
    SGPUString sText;
    sText.strText = TEXTS[rBytes.Byte() % std::size(TEXTS)];
    sText.nX = rBytes.Between(-10, 60);
    sText.nY = rBytes.Between(-10, 50);
    sText.nHeight = HEIGHTS[rBytes.Byte() % std::size(HEIGHTS)];
    sText.nColor = COLOURS[rBytes.Byte() % std::size(COLOURS)];
    const unsigned int nAnchors = rBytes.Byte();
    sText.nHAlign = static_cast<int>(nAnchors % 3);
    sText.nVAlign = static_cast<int>(nAnchors / 3 % 3);
    sText.nHRef = static_cast<int>(nAnchors / 9 % 3);
    sText.nVRef = static_cast<int>(nAnchors / 27 % 3);
    strWords += " {\"" + sText.strText + "\" at " + std::to_string(sText.nX) + ", " +
                std::to_string(sText.nY) + ", height " + std::to_string(sText.nHeight) + ", colour " +
                std::to_string(sText.nColor) + ", anchors " + std::to_string(sText.nHAlign) +
                std::to_string(sText.nVAlign) + std::to_string(sText.nHRef) + std::to_string(sText.nVRef) +
                "}";
    return sText;
}

SStateCall StringCall(CFuzzBytes& rBytes)
{
    std::vector<SGPUString> vStrings;
    std::string strWords;
    for (unsigned int i = rBytes.Byte() % 4; i > 0; --i)
        vStrings.push_back(ReadString(rBytes, strWords));
    const bool bBytes = rBytes.Byte() % 4 == 3;
    return MakeCall("SetStrings(" + strWords + " )" + (bBytes ? " as bytes" : ""),
                    [=](CStatePlayer& rPlayer) {
                        std::vector<unsigned char> vBytes = BuildStrings(vStrings);
                        if (bBytes)
                            rPlayer.With([&](auto& d) {
                                return d.SetStrings(vBytes.data(), static_cast<int>(vBytes.size()));
                            });
                        else
                            rPlayer.With([&](auto& d) { return d.SetStrings(vStrings); });
                        rPlayer.Given().vStrings = vStrings;
                    });
}

// Overlays, masks and text.
#include "ControlPlayer.h"

#include "FuzzSupport.h"

#include <cstring>
#include <utility>
#include <vector>

/// Width and height of an image that is there; now and then one that no texture can be made of.
static void ImageSize(CFuzzBytes& rBytes, int& nWidth, int& nHeight)
{
    nWidth = rBytes.Between(1, 40);
    nHeight = rBytes.Between(1, 40);
    switch (rBytes.Byte()) {
    case 1:
        nWidth = 16385;
        nHeight = 1;
        break;
    case 2:
        nWidth = 1;
        nHeight = 20000;
        break;
    case 3:
        nWidth = rBytes.Between(-5, 0);
        break;
    case 4:
        nHeight = rBytes.Between(-5, 0);
        break;
    case 5:
        nWidth = nHeight = -3;
        break;
    default:
        break;
    }
}

/// Pixels in memory of exactly their size.
static std::unique_ptr<unsigned char[]> MakeImage(int nWidth, int nHeight, unsigned int nValue)
{
    const std::size_t nBytes = nWidth < 1 || nHeight < 1
                                   ? 4
                                   : 4 * static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight);
    std::unique_ptr<unsigned char[]> pImage(new unsigned char[nBytes]);
    std::memset(pImage.get(), static_cast<int>(nValue), nBytes);
    return pImage;
}

void CPlayer::InputOverlay()
{
    if (m_rBytes.Byte() % 4 == 3) {
        Require(With([&](auto& d) { return d.SetInputOverlay(nullptr, m_rBytes.Int(), 1, 0); }) == 1,
                "an overlay can be removed");
        return;
    }
    int nWidth = 0;
    int nHeight = 0;
    ImageSize(m_rBytes, nWidth, nHeight);
    const auto pImage = MakeImage(nWidth, nHeight, m_rBytes.Byte());
    const unsigned int nLines = nLogLines;
    const int nResult =
        With([&](auto& d) { return d.SetInputOverlay(pImage.get(), nWidth, nHeight, m_rBytes.Int()); });
    Require(nResult == 1 || nLogLines == nLines + 1, "an overlay is refused with one log line");
}

void CPlayer::OutputOverlay()
{
    if (m_rBytes.Byte() % 4 == 3) {
        Require(With([&](auto& d) { return d.SetOutputOverlay(nullptr, 0, 0, 0, {}); }) == 1,
                "an overlay can be removed");
        return;
    }
    int nWidth = 0;
    int nHeight = 0;
    ImageSize(m_rBytes, nWidth, nHeight);
    const auto pImage = MakeImage(nWidth, nHeight, m_rBytes.Byte());
    std::vector<SGRect> vRects(m_rBytes.Byte() % 4);
    for (SGRect& rRect : vRects)
        rRect = {m_rBytes.Int(), m_rBytes.Int(), m_rBytes.Int(), m_rBytes.Int()};
    const unsigned int nLines = nLogLines;
    const int nResult = With(
        [&](auto& d) { return d.SetOutputOverlay(pImage.get(), nWidth, nHeight, 0, std::move(vRects)); });
    Require(nResult == 1 || nLogLines == nLines + 1, "an overlay is refused with one log line");
}

void CPlayer::MaskList()
{
    std::vector<SGPolygon> vMasks(m_rBytes.Byte() % 4);
    for (SGPolygon& rMask : vMasks) {
        rMask.nColor = m_rBytes.Word();
        rMask.vPoints.resize(m_rBytes.Byte() % 9);
        for (SGPoint& rPoint : rMask.vPoints)
            rPoint = {m_rBytes.Int(), m_rBytes.Int()};
    }
    With([&](auto& d) { return d.SetMaskPolygons(std::move(vMasks)); });
}

void CPlayer::MaskBytes()
{
    std::vector<unsigned char> vBlock = m_rBytes.Block(60);
    const int nSize = static_cast<int>(vBlock.size());
    With(
        [&](auto& d) { return d.SetMaskPolygons(vBlock.data(), m_rBytes.Byte() % 8 == 7 ? -nSize : nSize); });
}

void CPlayer::StringList()
{
    std::vector<SGPUString> vStrings(m_rBytes.Byte() % 4);
    for (SGPUString& rString : vStrings) {
        for (const unsigned char nByte : m_rBytes.Block(12))
            rString.strText.push_back(static_cast<char>(nByte));
        rString.nX = m_rBytes.Int();
        rString.nY = m_rBytes.Int();
        rString.nHeight = m_rBytes.Int();
        rString.nColor = m_rBytes.Word();
        for (int* pChoice : {&rString.nHAlign, &rString.nVAlign, &rString.nHRef, &rString.nVRef})
            *pChoice = m_rBytes.Between(0, 3);
    }
    With([&](auto& d) { return d.SetStrings(std::move(vStrings)); });
}

void CPlayer::StringBytes()
{
    std::vector<unsigned char> vBlock = m_rBytes.Block(60);
    const int nSize = static_cast<int>(vBlock.size());
    With([&](auto& d) { return d.SetStrings(vBlock.data(), m_rBytes.Byte() % 8 == 7 ? -nSize : nSize); });
}

#include "dewarp/cpu/OutputLayer.h"

#include "dewarp/cpu/LayerSample.h"
#include "dewarp/cpu/OverlayImage.h"

namespace
{

const int PIECE = 32; ///< pixels of a row that are looked at together

/// One row of the target.
void AddTargetRow(const COverlayImage& rImage, const std::vector<std::int32_t>& rColumns, std::int32_t nRow,
                  int y, bool bLinear, bool bSameSize, std::uint32_t* pSamples, CRunLayer& rLayer)
{
    const int nWidth = static_cast<int>(rColumns.size());
    SLayerBox sBox;
    TexelsBetween(nRow, nRow, bLinear, rImage.Height(), sBox.y0, sBox.y1);
    for (int x = 0; x < nWidth; x += PIECE) {
        const std::int32_t* const pColumns = rColumns.data() + x;
        const int nPixels = std::min(PIECE, nWidth - x);
        TexelsBetween(pColumns[0], pColumns[nPixels - 1], bLinear, rImage.Width(), sBox.x0, sBox.x1);
        std::uint32_t nColour = 0;
        const ELayerClass eClass = rImage.Classify(sBox.x0, sBox.y0, sBox.x1, sBox.y1, nColour);
        if (eClass != LAYER_MIXED) {
            std::fill_n(pSamples + x, nPixels, eClass == LAYER_SOLID ? nColour : 0U);
            continue;
        }
        if (bSameSize) {
            rImage.Read(x, y, x + nPixels - 1, y, pSamples + x);
            continue;
        }
        for (int i = 0; i < nPixels; ++i)
            pSamples[x + i] = SampleTexels({pColumns[i], nRow}, bLinear, rImage.Width(), rImage.Height(),
                                           [&](int nX, int nY) { return rImage.At(nX, nY); });
    }
    rLayer.AddRow(y, 0, pSamples, nWidth);
}

} // namespace

void BuildOutputLayer(const COverlayImage& rImage, int nTargetWidth, int nTargetHeight, bool bLinear,
                      const SLayerFormat& rFormat, CRunLayer& rLayer)
{
    rLayer.Begin(rFormat);
    if (rImage.IsEmpty() || nTargetWidth < 1 || nTargetHeight < 1)
        return;
    const CLayerScale oX(nTargetWidth, rImage.Width());
    const CLayerScale oY(nTargetHeight, rImage.Height());
    const bool bSameSize = nTargetWidth == rImage.Width() && nTargetHeight == rImage.Height();
    std::vector<std::int32_t> vColumns;
    vColumns.reserve(static_cast<std::size_t>(nTargetWidth));
    for (int x = 0; x < nTargetWidth; ++x)
        vColumns.push_back(oX(x * POSITION_ONE));
    std::vector<std::uint32_t> vSamples(vColumns.size());
    for (int y = 0; y < nTargetHeight; ++y)
        AddTargetRow(rImage, vColumns, oY(y * POSITION_ONE), y, bLinear, bSameSize, vSamples.data(), rLayer);
    rLayer.Finish();
}

#include "dewarp/records/ColourMatrix.h"

namespace
{

// The ITU-R matrices, three decimals.
constexpr SColourMatrix BT601 = {1.402f, 0.344f, 0.714f, 1.772f};
constexpr SColourMatrix BT709 = {1.575f, 0.187f, 0.468f, 1.856f};
constexpr SColourMatrix BT2020 = {1.475f, 0.165f, 0.571f, 1.881f};
// BT.601 with coefficients scaled for older encoders.
constexpr SColourMatrix BT601_SCALED = {1.3707f, 0.3376f, 0.6980f, 1.7324f};

constexpr SYUVMatrix ADJUSTMENT_TO_YUV = {
    {0.299f, 0.587f, 0.114f}, {-0.169f, -0.331f, 0.5f}, {0.5f, -0.419f, -0.081f}};
constexpr SColourMatrix ADJUSTMENT_TO_RGB = {1.4f, 0.343f, 0.711f, 1.765f};

} // namespace

const SColourMatrix& ColourMatrixOf(EYUVSpace eSpace)
{
    switch (static_cast<int>(eSpace)) {
    case YUV_SPACE_BT709:
        return BT709;
    case YUV_SPACE_BT2020:
        return BT2020;
    case YUV_SPACE_BT601_SCALED:
        return BT601_SCALED;
    default:
        return BT601;
    }
}

SLumaShares LumaSharesOf(const SColourMatrix& rMatrix)
{
    return {rMatrix.fGreenV / rMatrix.fRedV, rMatrix.fGreenU / rMatrix.fBlueU};
}

const SYUVMatrix& AdjustmentToYUV()
{
    return ADJUSTMENT_TO_YUV;
}

const SColourMatrix& AdjustmentToRGB()
{
    return ADJUSTMENT_TO_RGB;
}

int EffectiveYUVSpace(int nRequested, int nReported)
{
    if (nRequested == YUV_SPACE_AUTO)
        return nReported >= YUV_SPACE_BT601 && nReported <= YUV_SPACE_BT2020 ? nReported : YUV_SPACE_BT601;
    return nRequested >= YUV_SPACE_BT601 && nRequested <= YUV_SPACE_BT601_SCALED ? nRequested
                                                                                 : YUV_SPACE_BT601;
}

int EffectiveYUVRange(int nRequested, int nReported)
{
    const int nRange = nRequested == YUV_RANGE_AUTO ? nReported : nRequested;
    return nRange == YUV_RANGE_LIMITED ? YUV_RANGE_LIMITED : YUV_RANGE_FULL;
}

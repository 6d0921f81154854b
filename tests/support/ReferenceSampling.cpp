#include "tests/support/ReferenceSampling.h"

#include <algorithm>
#include <cmath>

static double WeightOf(ESampling eSampling, double x)
{
    const double PI = 3.14159265358979323846;
    x = std::abs(x);
    switch (eSampling) {
    case SAMPLING_NEAREST:
        return x <= 0.5 ? 1.0 : 0.0;
    case SAMPLING_CUBIC:
        if (x >= 2.0)
            return 0.0;
        return x < 1.0 ? 1.5 * x * x * x - 2.5 * x * x + 1.0 : -0.5 * x * x * x + 2.5 * x * x - 4.0 * x + 2.0;
    case SAMPLING_LANCZOS:
        if (x < 1e-12)
            return 1.0;
        return x >= 3.0 ? 0.0 : std::sin(PI * x) / (PI * x) * (std::sin(PI * x / 3.0) / (PI * x / 3.0));
    default:
        return std::max(0.0, 1.0 - x);
    }
}

FColour SampleReference(const STestImage& sPicture, double x, double y, ESampling eSampling)
{
    const int nReach = 4;
    const int nX = static_cast<int>(std::floor(x));
    const int nY = static_cast<int>(std::floor(y));
    FColour aSum = {0.0, 0.0, 0.0};
    double fTotal = 0.0;
    for (int j = nY - nReach; j <= nY + nReach; ++j) {
        const double fDown = WeightOf(eSampling, y - 0.5 - j);
        for (int i = nX - nReach; i <= nX + nReach && fDown != 0.0; ++i) {
            const double fWeight = fDown * WeightOf(eSampling, x - 0.5 - i);
            const unsigned char* const p =
                sPicture.At(std::clamp(i, 0, sPicture.nWidth - 1), std::clamp(j, 0, sPicture.nHeight - 1));
            for (std::size_t k = 0; k < 3; ++k)
                aSum[k] += fWeight * p[k] / 255.0;
            fTotal += fWeight;
        }
    }
    for (double& f : aSum)
        f = std::clamp(f / fTotal, 0.0, 1.0);
    return aSum;
}

STestImage BoxAverage(const STestImage& sPicture, int nFactor)
{
    STestImage sAverage(sPicture.nWidth / nFactor, sPicture.nHeight / nFactor);
    for (int y = 0; y < sAverage.nHeight; ++y) {
        for (int x = 0; x < sAverage.nWidth; ++x) {
            int an[4] = {};
            for (int n = 0; n < nFactor * nFactor; ++n) {
                const int nRow = n / nFactor;
                const unsigned char* const p = sPicture.At(x * nFactor + n % nFactor, y * nFactor + nRow);
                for (int k = 0; k < 4; ++k)
                    an[k] += p[k];
            }
            for (int& n : an)
                n = (n + nFactor * nFactor / 2) / (nFactor * nFactor);
            sAverage.Set(x, y, an[0], an[1], an[2], an[3]);
        }
    }
    return sAverage;
}

#include "bench/Layers.h"

#include <cmath>
#include <cstdio>

std::vector<SGPolygon> BenchMasks(int nShift)
{
    std::vector<SGPolygon> vMasks;
    for (int i = 0; i < 8; ++i) {
        SGPolygon sMask;
        sMask.nColor = 0x404040FF;
        const int nColumn = i % 4;
        const int nRow = i / 4;
        for (int k = 0; k < 12; ++k) {
            const double fAngle = 6.283185 * k / 12;
            const double fRadius = k % 2 == 0 ? 150.0 : 90.0;
            sMask.vPoints.push_back(
                {static_cast<int>(400 + nColumn * 300 + fRadius * std::cos(fAngle)) + nShift,
                 static_cast<int>(500 + nRow * 600 + fRadius * std::sin(fAngle))});
        }
        vMasks.push_back(sMask);
    }
    return vMasks;
}

std::vector<SGPUString> BenchStrings(int nSecond)
{
    std::vector<SGPUString> vStrings(2);
    char acTime[32];
    std::snprintf(acTime, sizeof acTime, "2026-11-21 %02d:%02d:%02d", nSecond / 3600 % 24, nSecond / 60 % 60,
                  nSecond % 60);
    vStrings[0].strText = "Entrance hall, camera 3";
    vStrings[0].nX = vStrings[0].nY = 16;
    vStrings[1].strText = acTime;
    vStrings[1].nX = vStrings[1].nY = -16;
    vStrings[1].nHAlign = vStrings[1].nVAlign = vStrings[1].nHRef = vStrings[1].nVRef = 2;
    return vStrings;
}

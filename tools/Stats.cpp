#include "Stats.h"

#include <cstdio>

namespace
{

std::string FormatLine(const char* pName, double fMilliseconds)
{
    char aLine[80];
    std::snprintf(aLine, sizeof(aLine), "%-20s %9.2f ms\n", pName, fMilliseconds);
    return aLine;
}

} // namespace

double CStats::Lap()
{
    const TClock::time_point oNow = TClock::now();
    const double fMilliseconds = std::chrono::duration<double, std::milli>(oNow - m_oBegin).count();
    m_oBegin = oNow;
    return fMilliseconds;
}

std::string CStats::Format() const
{
    std::string strLines;
    double fSum = 0.0;
    for (const auto& [pName, fMilliseconds] : m_vStages) {
        strLines += FormatLine(pName, fMilliseconds);
        fSum += fMilliseconds;
    }
    return strLines + FormatLine("total", fSum);
}

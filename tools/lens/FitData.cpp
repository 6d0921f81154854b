#include "lens/FitData.h"

#include "FileIO.h"
#include "ToolError.h"
#include "lens/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>

namespace
{

const std::size_t MOST_BYTES = std::size_t{1} << 20;
const std::size_t MOST_ROWS = 20000;
const double MOST_PIXELS = 1e6;
const double MOST_ANGLE = 179.0;

struct SRow
{
    int nNumber = 0; ///< in the file, from 1
    std::vector<std::string> vValues;
};

std::string Trimmed(const std::string& strText)
{
    const char* pBlanks = " \t\r";
    const std::size_t nFirst = strText.find_first_not_of(pBlanks);
    if (nFirst == std::string::npos)
        return std::string();
    return strText.substr(nFirst, strText.find_last_not_of(pBlanks) - nFirst + 1);
}

SRow SplitRow(int nNumber, const std::string& strLine)
{
    SRow sRow;
    sRow.nNumber = nNumber;
    std::size_t nBegin = 0;
    for (std::size_t nComma = 0; nComma != std::string::npos; nBegin = nComma + 1) {
        nComma = strLine.find(',', nBegin);
        sRow.vValues.push_back(Trimmed(strLine.substr(nBegin, nComma - nBegin)));
    }
    return sRow;
}

bool HasNumber(const SRow& rRow)
{
    double fNumber = 0.0;
    return std::any_of(rRow.vValues.begin(), rRow.vValues.end(),
                       [&fNumber](const std::string& strValue) { return ReadNumber(strValue, fNumber); });
}

std::vector<SRow> ReadRows(const std::string& strPath)
{
    const std::vector<unsigned char> vBytes = ReadFile(strPath, MOST_BYTES);
    const std::string strText(vBytes.begin(), vBytes.end());
    std::vector<SRow> vRows;
    int nNumber = 0;
    for (std::size_t nBegin = 0; nBegin < strText.size();) {
        const std::size_t nEnd = std::min(strText.find('\n', nBegin), strText.size());
        const std::string strLine = Trimmed(strText.substr(nBegin, nEnd - nBegin));
        nBegin = nEnd + 1;
        ++nNumber;
        if (strLine.empty() || strLine[0] == '#')
            continue;
        SRow sRow = SplitRow(nNumber, strLine);
        if (vRows.empty() && !HasNumber(sRow) && sRow.vValues.size() > 1)
            continue; // titles
        vRows.push_back(std::move(sRow));
        if (vRows.size() > MOST_ROWS)
            ThrowFailure(strPath + ": has more than " + std::to_string(MOST_ROWS) + " rows");
    }
    if (vRows.empty())
        ThrowFailure(strPath + ": has no rows");
    return vRows;
}

[[noreturn]] void Refuse(const std::string& strPath, const SRow& rRow, const std::string& strWhat)
{
    ThrowFailure(strPath + ": row " + std::to_string(rRow.nNumber) + ": " + strWhat);
}

double NumberAt(const std::string& strPath, const SRow& rRow, std::size_t nColumn, double fMin, double fMax,
                const char* pUnit)
{
    double fNumber = 0.0;
    if (!ReadNumber(rRow.vValues[nColumn], fNumber) || fNumber < fMin || fNumber > fMax)
        Refuse(strPath, rRow,
               "'" + rRow.vValues[nColumn].substr(0, 40) + "' is not a number from " + NumberText(fMin) +
                   " to " + NumberText(fMax) + " (" + pUnit + ")");
    return fNumber;
}

SFitPlace PlaceAt(const std::string& strPath, const SRow& rRow)
{
    return {NumberAt(strPath, rRow, 1, -MOST_PIXELS, MOST_PIXELS, "pixels"),
            NumberAt(strPath, rRow, 2, -MOST_PIXELS, MOST_PIXELS, "pixels")};
}

} // namespace

std::vector<SFitPoint> ReadFitPoints(const std::string& strPath)
{
    std::vector<SFitPoint> vPoints;
    for (const SRow& rRow : ReadRows(strPath)) {
        const std::size_t nValues = rRow.vValues.size();
        if (nValues != 2 && nValues != 3)
            Refuse(strPath, rRow, "give angle,x,y or angle,radius (degrees and pixels)");
        SFitPoint sPoint;
        sPoint.fAngle = NumberAt(strPath, rRow, 0, 0.0, MOST_ANGLE, "degrees off the axis");
        sPoint.bPlace = nValues == 3;
        if (!vPoints.empty() && vPoints.back().bPlace != sPoint.bPlace)
            Refuse(strPath, rRow,
                   "has " + std::to_string(nValues) + " values, and the rows before it have not");
        if (sPoint.bPlace)
            sPoint.sPlace = PlaceAt(strPath, rRow);
        else
            sPoint.fRadius = NumberAt(strPath, rRow, 1, 0.0, MOST_PIXELS, "pixels from the centre");
        vPoints.push_back(sPoint);
    }
    return vPoints;
}

std::vector<SFitLine> ReadFitLines(const std::string& strPath)
{
    std::vector<SFitLine> vLines;
    std::map<std::string, std::size_t> oPlaces;
    for (const SRow& rRow : ReadRows(strPath)) {
        if (rRow.vValues.size() != 3 || rRow.vValues[0].empty())
            Refuse(strPath, rRow, "give line,x,y: the line's name and pixels");
        const auto [it, bNew] = oPlaces.emplace(rRow.vValues[0], vLines.size());
        if (bNew)
            vLines.push_back({rRow.vValues[0], {}});
        vLines[it->second].vPlaces.push_back(PlaceAt(strPath, rRow));
    }
    for (const SFitLine& rLine : vLines)
        if (rLine.vPlaces.size() < 3)
            ThrowFailure(strPath + ": line '" + rLine.strName.substr(0, 40) + "' has " +
                         std::to_string(rLine.vPlaces.size()) +
                         " points; any two lie on a line, so give three or more");
    return vLines;
}

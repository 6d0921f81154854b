#include "Overlays.h"

#include "FileIO.h"
#include "ImageReader.h"
#include "ToolError.h"

#include "dewarp/overlays/MaskPolygonFormat.h"
#include "dewarp/overlays/StringFormat.h"

namespace
{

/// Far more than any list of masks or texts that can be drawn in time.
const std::size_t MAX_LIST_BYTES = 16 << 20;

/// A list in its byte form. What is written of the records that were read must be the whole file.
template <class TRecords>
TRecords ReadList(const std::string& strPath, TRecords (*pParse)(const unsigned char*, int),
                  std::vector<unsigned char> (*pBuild)(const TRecords&))
{
    const std::vector<unsigned char> vBytes = ReadFile(strPath, MAX_LIST_BYTES);
    TRecords vRecords = pParse(vBytes.data(), static_cast<int>(vBytes.size()));
    const std::size_t nWhole = vRecords.empty() ? 0 : pBuild(vRecords).size();
    if (nWhole != vBytes.size())
        ThrowFailure(strPath + ": holds " + std::to_string(vRecords.size()) + " whole records and " +
                     std::to_string(vBytes.size() - nWhole) + " bytes more; give whole records");
    return vRecords;
}

template <class TRecords>
void Append(TRecords& vRecords, const TRecords& vMore)
{
    vRecords.insert(vRecords.end(), vMore.begin(), vMore.end());
}

} // namespace

SOverlays LoadOverlays(const SToolOptions& sOptions)
{
    SOverlays sOverlays;
    if (!sOptions.strInputOverlay.empty())
        sOverlays.oInput = ReadImageRGBA(sOptions.strInputOverlay);
    if (!sOptions.strOutputOverlay.empty())
        sOverlays.oOutput = ReadImageRGBA(sOptions.strOutputOverlay);
    if (!sOptions.strMaskFile.empty())
        sOverlays.vMasks = ReadList(sOptions.strMaskFile, ParseMaskPolygons, BuildMaskPolygons);
    Append(sOverlays.vMasks, sOptions.vMasks);
    if (!sOptions.strStringsFile.empty())
        sOverlays.vTexts = ReadList(sOptions.strStringsFile, ParseStrings, BuildStrings);
    Append(sOverlays.vTexts, sOptions.vTexts);
    return sOverlays;
}

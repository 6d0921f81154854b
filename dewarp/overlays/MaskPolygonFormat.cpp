#include "dewarp/overlays/MaskPolygonFormat.h"

#include "dewarp/overlays/BigEndian.h"
#include "dewarp/records/LogTag.h"

#include <android/log.h>

#include <algorithm>
#include <limits>

static const std::size_t COUNT_BYTES = 2;
static const std::size_t POINT_BYTES = 4;
static const std::size_t COLOR_BYTES = 4;
static const std::size_t MOST_POINTS = 0xFFFF;
static const std::size_t MOST_BYTES = static_cast<std::size_t>(std::numeric_limits<int>::max());

static SGPolygon ReadPolygon(CByteReader& oReader, std::size_t nPoints)
{
    SGPolygon sPolygon;
    sPolygon.vPoints.resize(nPoints);
    for (SGPoint& sPoint : sPolygon.vPoints) {
        sPoint.x = oReader.ReadSigned16();
        sPoint.y = oReader.ReadSigned16();
    }
    sPolygon.nColor = oReader.ReadUnsigned(COLOR_BYTES);
    return sPolygon;
}

std::vector<SGPolygon> ParseMaskPolygons(const unsigned char* pData, int nLength)
{
    std::vector<SGPolygon> vPolygons;
    if (pData == nullptr || nLength < 1)
        return vPolygons;
    CByteReader oReader(pData, static_cast<std::size_t>(nLength));
    while (oReader.GetLeft() >= COUNT_BYTES) {
        CByteReader oRecord = oReader;
        const std::size_t nPoints = oRecord.ReadUnsigned(COUNT_BYTES);
        if (oRecord.GetLeft() < nPoints * POINT_BYTES + COLOR_BYTES)
            break;
        vPolygons.push_back(ReadPolygon(oRecord, nPoints));
        oReader = oRecord;
    }
    if (oReader.GetLeft() > 0)
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                            "%s: incomplete mask after %zu whole ones, %zu bytes dropped", __func__,
                            vPolygons.size(), oReader.GetLeft());
    return vPolygons;
}

static bool FitsSigned16(int nValue)
{
    return nValue >= -0x8000 && nValue <= 0x7FFF;
}

static bool CanBeWritten(const SGPolygon& sPolygon)
{
    return sPolygon.vPoints.size() <= MOST_POINTS &&
           std::all_of(sPolygon.vPoints.begin(), sPolygon.vPoints.end(), [](const SGPoint& sPoint) {
               return FitsSigned16(sPoint.x) && FitsSigned16(sPoint.y);
           });
}

std::vector<unsigned char> BuildMaskPolygons(const std::vector<SGPolygon>& vPolygons)
{
    std::vector<unsigned char> vBytes;
    for (std::size_t i = 0; i < vPolygons.size(); ++i) {
        const SGPolygon& sPolygon = vPolygons[i];
        const std::size_t nBytes = COUNT_BYTES + sPolygon.vPoints.size() * POINT_BYTES + COLOR_BYTES;
        if (!CanBeWritten(sPolygon) || nBytes > MOST_BYTES - vBytes.size()) {
            __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                                "%s: mask %zu does not fit the format, nothing built", __func__, i);
            return {};
        }
        AppendBigEndian(vBytes, static_cast<unsigned int>(sPolygon.vPoints.size()), COUNT_BYTES);
        for (const SGPoint& sPoint : sPolygon.vPoints) {
            AppendBigEndian(vBytes, static_cast<unsigned int>(sPoint.x), 2);
            AppendBigEndian(vBytes, static_cast<unsigned int>(sPoint.y), 2);
        }
        AppendBigEndian(vBytes, sPolygon.nColor, COLOR_BYTES);
    }
    return vBytes;
}

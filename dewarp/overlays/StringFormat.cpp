#include "dewarp/overlays/StringFormat.h"

#include "dewarp/overlays/BigEndian.h"
#include "dewarp/records/LogTag.h"

#include <android/log.h>

#include <limits>

static const std::size_t COUNT_BYTES = 2;
static const std::size_t FIXED_BYTES = 14; // what follows the characters
static const std::size_t MOST_BYTES = static_cast<std::size_t>(std::numeric_limits<int>::max());

static SGPUString ReadString(CByteReader& oReader, std::size_t nCharacters)
{
    SGPUString sString;
    sString.strText.assign(oReader.GetPosition(), oReader.GetPosition() + nCharacters);
    oReader.Skip(nCharacters);
    sString.nX = oReader.ReadSigned16();
    sString.nY = oReader.ReadSigned16();
    sString.nHeight = static_cast<int>(oReader.ReadUnsigned(2));
    sString.nColor = oReader.ReadUnsigned(4);
    sString.nHAlign = static_cast<int>(oReader.ReadUnsigned(1));
    sString.nVAlign = static_cast<int>(oReader.ReadUnsigned(1));
    sString.nHRef = static_cast<int>(oReader.ReadUnsigned(1));
    sString.nVRef = static_cast<int>(oReader.ReadUnsigned(1));
    return sString;
}

std::vector<SGPUString> ParseStrings(const unsigned char* pData, int nLength)
{
    std::vector<SGPUString> vStrings;
    if (pData == nullptr || nLength < 1)
        return vStrings;
    CByteReader oReader(pData, static_cast<std::size_t>(nLength));
    while (oReader.GetLeft() >= COUNT_BYTES) {
        CByteReader oRecord = oReader;
        const std::size_t nCharacters = oRecord.ReadUnsigned(COUNT_BYTES);
        if (oRecord.GetLeft() < nCharacters + FIXED_BYTES)
            break;
        vStrings.push_back(ReadString(oRecord, nCharacters));
        oReader = oRecord;
    }
    if (oReader.GetLeft() > 0)
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                            "%s: incomplete string after %zu whole ones, %zu bytes dropped", __func__,
                            vStrings.size(), oReader.GetLeft());
    return vStrings;
}

static bool Within(int nValue, int nLeast, int nMost)
{
    return nValue >= nLeast && nValue <= nMost;
}

static bool CanBeWritten(const SGPUString& sString)
{
    return sString.strText.size() <= 0xFFFF && Within(sString.nX, -0x8000, 0x7FFF) &&
           Within(sString.nY, -0x8000, 0x7FFF) && Within(sString.nHeight, 0, 0xFFFF) &&
           Within(sString.nHAlign, 0, 0xFF) && Within(sString.nVAlign, 0, 0xFF) &&
           Within(sString.nHRef, 0, 0xFF) && Within(sString.nVRef, 0, 0xFF);
}

std::vector<unsigned char> BuildStrings(const std::vector<SGPUString>& vStrings)
{
    std::vector<unsigned char> vBytes;
    for (std::size_t i = 0; i < vStrings.size(); ++i) {
        const SGPUString& sString = vStrings[i];
        const std::size_t nBytes = COUNT_BYTES + sString.strText.size() + FIXED_BYTES;
        if (!CanBeWritten(sString) || nBytes > MOST_BYTES - vBytes.size()) {
            __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                                "%s: string %zu does not fit the format, nothing built", __func__, i);
            return {};
        }
        AppendBigEndian(vBytes, static_cast<unsigned int>(sString.strText.size()), COUNT_BYTES);
        vBytes.insert(vBytes.end(), sString.strText.begin(), sString.strText.end());
        AppendBigEndian(vBytes, static_cast<unsigned int>(sString.nX), 2);
        AppendBigEndian(vBytes, static_cast<unsigned int>(sString.nY), 2);
        AppendBigEndian(vBytes, static_cast<unsigned int>(sString.nHeight), 2);
        AppendBigEndian(vBytes, sString.nColor, 4);
        for (const int nChoice : {sString.nHAlign, sString.nVAlign, sString.nHRef, sString.nVRef})
            AppendBigEndian(vBytes, static_cast<unsigned int>(nChoice), 1);
    }
    return vBytes;
}

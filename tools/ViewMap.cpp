#include "ViewMap.h"

#include "FileIO.h"
#include "ImageWriter.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace
{

/// What stands for a pixel that shows nothing.
const std::uint16_t NOTHING = 65535;
/// Steps of a pixel in the 16-bit pictures.
const float PNG_STEPS = 16.0f;

std::uint16_t Rounded(float fValue)
{
    // A place a little beside the first pixel is the first pixel's.
    const float fLimited = fValue < 0.0f ? 0.0f : fValue;
    return fLimited < 65534.0f ? static_cast<std::uint16_t>(std::lround(fLimited)) : NOTHING;
}

std::vector<std::uint16_t> Scaled(const std::vector<float>& vPlane, float fSteps)
{
    std::vector<std::uint16_t> vValues;
    vValues.reserve(vPlane.size());
    for (const float f : vPlane)
        vValues.push_back(std::isfinite(f) ? Rounded(f * fSteps) : NOTHING);
    return vValues;
}

std::vector<unsigned char> FloatBytes(const std::vector<float>& vPlane)
{
    std::vector<unsigned char> vBytes;
    vBytes.reserve(vPlane.size() * 4);
    for (const float f : vPlane) {
        const auto n = std::bit_cast<std::uint32_t>(f);
        for (unsigned int i = 0; i < 32; i += 8)
            vBytes.push_back(static_cast<unsigned char>(n >> i));
    }
    return vBytes;
}

/// A binary PGM, high byte first.
std::vector<unsigned char> EncodePGM(const std::vector<std::uint16_t>& vValues, int nWidth, int nHeight)
{
    const std::string strHead = "P5\n" + std::to_string(nWidth) + " " + std::to_string(nHeight) + "\n65535\n";
    std::vector<unsigned char> vBytes(strHead.begin(), strHead.end());
    for (const std::uint16_t n : vValues) {
        vBytes.push_back(static_cast<unsigned char>(n >> 8));
        vBytes.push_back(static_cast<unsigned char>(n & 255));
    }
    return vBytes;
}

} // namespace

std::vector<std::string> WriteViewMap(const std::string& strName, const SViewMap& rMap)
{
    std::vector<std::string> vNames;
    const auto Write = [&](const std::string& strEnding, const std::vector<unsigned char>& vBytes) {
        vNames.push_back(strName + strEnding);
        WriteFile(vNames.back(), vBytes.data(), vBytes.size());
    };
    const std::pair<const char*, const std::vector<float>*> aPlanes[] = {{"-x", &rMap.vX}, {"-y", &rMap.vY}};
    for (const auto& [pAxis, pPlane] : aPlanes) {
        const std::string strAxis = pAxis;
        Write(strAxis + ".f32", FloatBytes(*pPlane));
        Write(strAxis + ".png", EncodeGray16(Scaled(*pPlane, PNG_STEPS).data(), rMap.nWidth, rMap.nHeight));
        Write(strAxis + ".pgm", EncodePGM(Scaled(*pPlane, 1.0f), rMap.nWidth, rMap.nHeight));
    }
    return vNames;
}

// dewarp_probe meshes FILE       writes every mesh and shader text
// dewarp_probe pictures FILE     draws a few small pictures and writes them
// dewarp_probe compare A B       tells how the files of two processors differ; fails when they do so too much
#include "Probe.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{

const float MESH_TOLERANCE = 1e-6f;
// Bytes of pictures: filters round chroma differently by 2 steps, which count up to 1.8 times in blue. At
// edges of the mesh a pixel may be another one.
const int PICTURE_STEP = 4;
const double PICTURE_SHARE = 0.002;

bool SameNumbers(const CProbeFile& rA, const CProbeFile& rB)
{
    float fMax = 0.0f;
    std::size_t nCount = 0;
    for (const auto& [strName, vA] : rA.mNumbers) {
        const auto pFound = rB.mNumbers.find(strName);
        if (pFound == rB.mNumbers.end() || pFound->second.size() != vA.size()) {
            std::printf("%s: missing, or of another length\n", strName.c_str());
            return false;
        }
        for (std::size_t i = 0; i < vA.size(); ++i) {
            const float fDifference = std::abs(vA[i] - pFound->second[i]);
            if (!(fDifference <= MESH_TOLERANCE)) {
                std::printf("%s: number %zu is %.9g and %.9g\n", strName.c_str(), i,
                            static_cast<double>(vA[i]), static_cast<double>(pFound->second[i]));
                return false;
            }
            fMax = fDifference > fMax ? fDifference : fMax;
        }
        nCount += vA.size();
    }
    std::printf("%zu meshes' rows, %zu numbers: largest difference %.3g\n", rA.mNumbers.size(), nCount,
                static_cast<double>(fMax));
    return rA.mNumbers.size() == rB.mNumbers.size();
}

bool SameTexts(const CProbeFile& rA, const CProbeFile& rB)
{
    for (const auto& [strName, strText] : rA.mBytes) {
        const auto pFound = rB.mBytes.find(strName);
        if (pFound == rB.mBytes.end() || pFound->second != strText) {
            std::printf("%s: another text\n", strName.c_str());
            return false;
        }
    }
    std::printf("%zu texts: identical\n", rA.mBytes.size());
    return rA.mBytes.size() == rB.mBytes.size();
}

bool SamePictures(const CProbeFile& rA, const CProbeFile& rB)
{
    bool bSame = rA.mBytes.size() == rB.mBytes.size();
    for (const auto& [strName, strA] : rA.mBytes) {
        const auto pFound = rB.mBytes.find(strName);
        if (pFound == rB.mBytes.end() || pFound->second.size() != strA.size()) {
            std::printf("%s: missing, or of another size\n", strName.c_str());
            return false;
        }
        int nMax = 0;
        std::size_t nFar = 0;
        bool bPlain = true;
        for (std::size_t i = 0; i < strA.size(); ++i) {
            const int nDifference =
                std::abs(static_cast<unsigned char>(strA[i]) - static_cast<unsigned char>(pFound->second[i]));
            nMax = nDifference > nMax ? nDifference : nMax;
            nFar += nDifference > PICTURE_STEP;
            bPlain = bPlain && strA[i] == strA[i % 4];
        }
        const double fShare = static_cast<double>(nFar) / static_cast<double>(strA.size());
        std::printf("%s: largest difference %d, %.3f %% above %d\n", strName.c_str(), nMax, 100.0 * fShare,
                    PICTURE_STEP);
        bSame = bSame && fShare <= PICTURE_SHARE && !bPlain;
    }
    return bSame;
}

int Compare(const char* pA, const char* pB)
{
    CProbeFile oA;
    CProbeFile oB;
    if (!oA.Read(pA) || !oB.Read(pB)) {
        std::printf("%s and %s cannot be read\n", pA, pB);
        return EXIT_FAILURE;
    }
    const bool bSame = oA.mNumbers.empty() ? SamePictures(oA, oB) : SameNumbers(oA, oB) && SameTexts(oA, oB);
    return bSame ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    const std::string strWhat = nArguments > 2 ? ppArguments[1] : "";
    if (strWhat == "compare" && nArguments == 4)
        return Compare(ppArguments[2], ppArguments[3]);
    CProbeFile oFile;
    if (strWhat == "meshes")
        DumpMeshesAndTexts(oFile);
    else if (strWhat != "pictures" || !DrawPictures(oFile))
        return EXIT_FAILURE;
    return oFile.Write(ppArguments[2]) ? EXIT_SUCCESS : EXIT_FAILURE;
}

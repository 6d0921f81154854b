// The processor engine's golden pictures as hashes, tests/golden/pictures/processor.txt: the same bytes from
// every set of instructions. Frames and meshes come from the mathematics library, whose last bit may be
// another on other processors than x86-64; there the hashes that agree are counted.
//
// LUMOR_WRITE_GOLDEN=1 in the environment writes them anew. What they look like is GoldenGLTest's to judge.
#include "tests/gl/pictures/GoldenCases.h"
#include "tests/support/EngineDewarper.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

namespace
{

using VBytes = std::vector<unsigned char>;

/// 64 bits of FNV-1a, in words.
std::string HashOf(const VBytes& vBytes)
{
    std::uint64_t nHash = 14695981039346656037ULL;
    for (const unsigned char nByte : vBytes)
        nHash = (nHash ^ nByte) * 1099511628211ULL;
    char acHash[17];
    std::snprintf(acHash, sizeof acHash, "%016llx", static_cast<unsigned long long>(nHash));
    return acHash;
}

/// Hashes of a case: pixels, and YUV420P.
std::string HashesOf(const SGoldenCase& sCase)
{
    const SReferenceSetup s = SetupOf(sCase);
    CTestFrame oFrame(InputOf(sCase), sCase.nFormat, 0, sCase.eSpace, sCase.bLimited);
    CEngineDewarper oDewarper(ENGINE_CPU, s.nTargetWidth, s.nTargetHeight);
    oDewarper->SetInterpolationType(sCase.bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
    EXPECT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sPicture = oDewarper.Picture();
    VBytes vYUV(static_cast<std::size_t>(s.nTargetWidth * s.nTargetHeight * 3 / 2));
    EXPECT_TRUE(oDewarper->DrawTo(vYUV.data(), s.nTargetWidth, IMAGE_FORMAT_YUV420P));
    return HashOf(sPicture.vPixels) + " " + HashOf(vYUV);
}

std::string HashFile()
{
    return std::string(TEST_SOURCE_DIR) + "/golden/pictures/processor.txt";
}

std::map<std::string, std::string> ReadHashes()
{
    std::ifstream oFile(HashFile());
    std::map<std::string, std::string> oHashes;
    for (std::string strLine; std::getline(oFile, strLine);) {
        const std::size_t nBlank = strLine.find(' ');
        if (nBlank != std::string::npos)
            oHashes[strLine.substr(0, nBlank)] = strLine.substr(nBlank + 1);
    }
    return oHashes;
}

} // namespace

TEST(GoldenHashes, AreThoseThatWereKept)
{
    const char* const pWrite = std::getenv("LUMOR_WRITE_GOLDEN");
    if (pWrite != nullptr && std::string(pWrite) == "1") {
        std::ofstream oFile(HashFile());
        for (const SGoldenCase& sCase : GOLDEN_CASES)
            oFile << sCase.pName << " " << HashesOf(sCase) << "\n";
    }
    const std::map<std::string, std::string> oHashes = ReadHashes();
    ASSERT_EQ(oHashes.size(), std::size(GOLDEN_CASES));
    int nSame = 0;
    for (const SGoldenCase& sCase : GOLDEN_CASES) {
        const std::string strHashes = HashesOf(sCase);
        const auto it = oHashes.find(sCase.pName);
        ASSERT_NE(it, oHashes.end()) << sCase.pName;
        nSame += strHashes == it->second ? 1 : 0;
#ifdef __x86_64__
        EXPECT_EQ(strHashes, it->second) << sCase.pName;
#endif
    }
    std::printf("  %d of %zu pictures have the bytes that were kept\n", nSame, std::size(GOLDEN_CASES));
    EXPECT_GT(nSame, 0);
}

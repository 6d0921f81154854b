// Bytes to lens files: JSON, YAML of calibration programs, or neither.
#include "FuzzSupport.h"

#include "LensFile.h"
#include "ToolError.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const CFuzzInput oInput;
    const std::string strBytes(pData, pData + nSize);
    try {
        const SLensFile sFile = ParseLensFile("lens", strBytes);
        Require(FindLensFault(sFile.sLens).empty(), "a lens without a fault");
        Require(LensEdgeAngle(sFile.sLens) > 0.0, "a field");
        const std::string strText = FormatLensFile(sFile);
        const SLensFile sAgain = ParseLensFile("again", strText);
        Require(sAgain.sLens == sFile.sLens && sAgain.oCircle == sFile.oCircle, "the same lens again");
    } catch (const CToolError& rError) {
        Require(rError.GetStatus() == EXIT_FAILED, "a file is refused as such");
        Require(rError.what()[0] != '\0', "with a line for the user");
    }
    return 0;
}

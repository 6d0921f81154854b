/// \file
/// Lens files for the tool's tests, as people and calibration programs write them.
#pragma once

#include <string>

namespace LENS_TEXTS
{

extern const char* const pModel;
extern const char* const pTable;
extern const char* const pFisheye; ///< our form of a calibration
extern const char* const pUnified;
extern const char* const pOpenCVFisheye;
extern const char* const pOpenCVUnified;
extern const char* const pOpenCVJSON;
extern const char* const pROS;
extern const char* const pPinhole; ///< five coefficients

} // namespace LENS_TEXTS

/// A text with one part of it replaced; fails the test when it has no such part.
std::string Replaced(const std::string& strText, const std::string& strPart, const std::string& strNew);

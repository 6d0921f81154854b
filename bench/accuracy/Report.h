/// \file
/// What was measured, as tables and as JSON.
#pragma once

#include "bench/accuracy/Colours.h"
#include "bench/accuracy/Pictures.h"
#include "bench/accuracy/Places.h"

struct SCaseResult
{
    SAccuracyCase sCase;
    SPlaceResult sPlaces;
    SPictureResult sPicture;
    /// Every limit that is broken, in words; empty: none.
    std::string Broken() const;
    std::string BrokenOptics() const;
};

struct SAccuracyReport
{
    std::string strDriver;
    std::vector<SCaseResult> vCases; ///< lens by lens
    std::vector<SColourResult> vColours;
};

/// Tables that read well as they are and as Markdown.
std::string TablesText(const SAccuracyReport& sReport);
std::string JSONText(const SAccuracyReport& sReport);

/// \file
/// What was measured in the pictures of a lens.
#pragma once

#include <string>
#include <vector>

/// Frame pixels from the top left, halves in the middles of pixels.
struct SFitPlace
{
    double x = 0.0;
    double y = 0.0;
};

/// A ray of a known angle off the axis, and where it landed: a place, or how far from the centre.
struct SFitPoint
{
    double fAngle = 0.0; ///< degrees
    bool bPlace = false;
    SFitPlace sPlace;
    double fRadius = 0.0; ///< pixels, without a place
};

/// Places along one straight edge of the world.
struct SFitLine
{
    std::string strName;
    std::vector<SFitPlace> vPlaces;
};

struct SFitData
{
    std::vector<SFitPoint> vPoints;
    std::vector<SFitLine> vLines;
};

/// Rows of numbers between commas; rows that are empty or begin with # and one with titles at the top are
/// passed over. Files of at most 1 MiB and 20000 rows. Fails: throws CToolError (EXIT_FAILED) with the file
/// and the row. angle,x,y or angle,radius: degrees and pixels.
std::vector<SFitPoint> ReadFitPoints(const std::string& strPath);
/// line,x,y: the line's name and pixels. Lines come in the order of their first rows; each has three places
/// or more.
std::vector<SFitLine> ReadFitLines(const std::string& strPath);

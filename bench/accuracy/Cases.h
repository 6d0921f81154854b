/// \file
/// The views, mounts and lenses that are measured.
#pragma once

#include "tests/support/ReferenceView.h"

#include <string>
#include <vector>

/// How far from where its own vertices and lens rule want it a view may be, in input pixels.
struct SPlaceLimits
{
    double fMean;    ///< mean displacement from the view's rule
    double fMost;    ///< 999 of 1000 pixels
    double fDriver;  ///< largest displacement of the drawn picture from the mesh
    double fDecibel; ///< picture: at most so much below an exact remap of the same frame
    /// The view is drawn without its mesh: it has to lie where the optics have it, and nothing else counts.
    bool bOpticsOnly = false;
};

struct SAccuracyCase
{
    std::string strView;
    std::string strMount;
    SReferenceSetup sSetup;
    SPlaceLimits sLimits;
};

/// Cases of one lens and mount share their fisheye frame.
struct SCaseGroup
{
    int nLens = 0;
    EMountType eMount = MOUNT_CEILING;
    double fMountTilt = 0.0;
    int nImageWidth = 0;
    int nImageHeight = 0;
    std::vector<SAccuracyCase> vCases;
};

/// Every view on every mount that it has, for every lens. Quick: a quarter of the width and height.
std::vector<SCaseGroup> ListGroups(bool bQuick);

/// The same for pictures of the processor engine, with exact geometry or without.
SPlaceLimits ProcessorLimits(const SPlaceLimits& rLimits, bool bExact);

std::string LensName(int nLens);

/// \file
/// How far from their places the pixels of a view lie, and whose doing that is.
#pragma once

#include "bench/accuracy/Cases.h"
#include "bench/accuracy/ViewSession.h"

/// Lengths in input pixels over the pixels of a view.
struct SSpread
{
    double fMean = 0.0;
    double fMost = 0.0; ///< 99.9 per cent stay below
    double fMax = 0.0;
};

/// A pixel of the view looks in a direction. The lens shows that direction at one place of the frame
/// (optics); the view's rule for its vertices wants it at another (rule); between the vertices the mesh
/// interpolates (mesh); the driver samples a fourth (drawn). Each step on the way is a spread of its own.
struct SPlaceResult
{
    SSpread sOptics; ///< drawn from optics
    SSpread sRule;   ///< rule from optics
    SSpread sDrawn;  ///< drawn from rule
    SSpread sMesh;   ///< mesh from rule
    SSpread sDriver; ///< drawn from mesh
    int nPixels = 0;
    int nWronglyDrawn = 0; ///< drawn by the library or by the exact view only, away from edges
};

/// Frames whose texels tell their places, and what they need to be read.
class CPlaceMeter
{
public:
    CPlaceMeter(int nImageWidth, int nImageHeight);

    SPlaceResult Measure(const SAccuracyCase& sCase, CViewSession& oSession);

private:
    CTestFrame m_oIndex;  ///< whole texels
    CTestFrame m_oPhase;  ///< parts of a texel, by the linear filter
    CTestFrame m_oPhase2; ///< the same, two texels on: one of both does not jump where it is read
};

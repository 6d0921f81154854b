/// \file
/// How far two pictures of one state agree.
#pragma once

#include "tests/support/TestImage.h"

/// Over all four channels. A pixel is drawn where its alpha is above 0.
struct SAgreement
{
    int nPixels = 0;
    double fMean = 0.0;         ///< difference, levels
    double fShareBeyond2 = 0.0; ///< of the bytes
    int nMost = 0;
    int nMostX = 0;
    int nMostY = 0;
    int nDrawnByOne = 0; ///< pixels farther than one pixel from an edge that one of both lacks
    int nOnEdges = 0;    ///< such pixels beside an edge

    /// The bounds: 0.3 levels in the mean, 99.9 per cent of the bytes within 2.
    bool Holds() const { return nDrawnByOne == 0 && fMean <= 0.3 && fShareBeyond2 <= 0.001; }
};

/// An edge is between a pixel and one of its eight neighbours, one drawn and the other not, in the first
/// picture: a pixel that only the second draws, or lacks, must have such a neighbour in the first.
SAgreement CompareStates(const STestImage& sFirst, const STestImage& sSecond);

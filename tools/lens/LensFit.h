/// \file
/// The lens that explains what was measured in its pictures.
#pragma once

#include "LensFile.h"
#include "lens/FitCurve.h"
#include "lens/FitData.h"

#include <optional>
#include <string>
#include <vector>

/// What is known of the frames. Units: pixels. One of size and circle is needed.
struct SFitSetup
{
    int nWidth = 0; ///< 0: not known
    int nHeight = 0;
    std::optional<SLensCircle> oCircle; ///< round; else the one that fits into the frame
    bool bKeepCenter = false;           ///< the circle's, or the frame's middle

    /// As the circle, or what takes its place.
    SLensCircle Circle() const;
};

/// One model's best. Units: degrees and pixels.
struct SLensFit
{
    SFitModel sModel;
    std::string strReason;    ///< why it is out of question; empty: it is not
    double fField = 0.0;      ///< across the circle, as far as the model and its curve go
    double fFieldDoubt = 0.0; ///< standard error of the field, for errors as large as those that are left
    double fFocal = 0.0;
    double fCenterX = 0.0;
    double fCenterY = 0.0;
    bool bCenterFitted = false;
    double fCenterDoubt = 0.0; ///< standard error, the larger one
    std::vector<double> vCoefficients;
    double fRMS = 0.0;
    double fLargest = 0.0;
    double fReach = 0.0; ///< from the centre to the outermost measurement
    double fScore = 0.0; ///< less is better; counts parameters, too
};

/// "equidistant", ..., "polynomial".
std::string FitModelName(const SFitModel& rModel);

/// Fits the five ideal models and the polynomial, in this order. bPolynomialAlone: the polynomial was asked
/// for, and is fitted to measurements that do not reach to the edge, too. Thread: any. Fails: throws
/// CToolError (EXIT_FAILED) where the data say too little for any model.
std::vector<SLensFit> FitLenses(const SFitData& rData, const SFitSetup& rSetup,
                                bool bPolynomialAlone = false);
/// The best of those that are not out of question; null: none.
const SLensFit* BestFit(const std::vector<SLensFit>& vFits);
/// The fit as a lens. The circle is told where it is not the one that lenses have anyway.
SLensFile LensOfFit(const SLensFit& rFit, const SFitSetup& rSetup);

/// \file
/// Frames of fisheye cameras that are computed, so that their circle is known.
#pragma once

#include "PictureCanvas.h"

#include <vector>

/// What a frame with an image circle looks like. Pixels; pixel centres at halves.
struct SCirclePicture
{
    int nWidth = 640;
    int nHeight = 480;
    double fCenterX = 320.0;
    double fCenterY = 240.0;
    double fRadiusX = 200.0; ///< where the light ends; of a blurred rim the middle
    double fRadiusY = 200.0;
    unsigned nSeed = 1;
    double fFloor = 8.0;       ///< level without light
    double fNoise = 1.5;       ///< its standard deviation
    double fBlur = 1.0;        ///< pixels that the rim is spread over
    double fGain = 240.0;      ///< levels of full light
    double fDimPart = 0.0;     ///< part of the radius over which light fades towards the rim
    double fDimPower = 1.0;    ///< 1: evenly; 2: faster first
    double fDimEnd = 0.0;      ///< part of the light that is left at the rim
    double fNight = 0.0;       ///< share of the scene that no lamp reaches
    double fNightLight = 0.01; ///< part of full light that falls there
    int nTexts = 0;            ///< time stamps in corners
    int nRimTexts = 0;         ///< and over the rim
    int nFlares = 0;
    int nCoarse = 0; ///< rounding of frequencies, 0 for none
};

std::vector<unsigned char> DrawCirclePicture(const SCirclePicture& rPicture);

enum ECircleScene : int
{
    CIRCLE_SHARP,
    CIRCLE_SMALL,
    CIRCLE_OFF_CENTRE,
    CIRCLE_NOISY,
    CIRCLE_COMPRESSED,
    CIRCLE_TEXT,
    CIRCLE_FLARE,
    CIRCLE_DIM,
    CIRCLE_NIGHT,
    CIRCLE_CUT_TWO,
    CIRCLE_CUT_FOUR,
    CIRCLE_CUT_ONE_SIDE,
    CIRCLE_ELLIPSE,
    CIRCLE_ELLIPSE_CUT,
    CIRCLE_ALL_AT_ONCE,
    CIRCLE_SCENES,
};

const char* NameOf(ECircleScene eScene);

/// Part of the radius that an answer may be off by.
double LimitOf(ECircleScene eScene);

/// One picture of a kind; fScale: 1 for about 640 x 480.
SCirclePicture MakeCirclePicture(ECircleScene eScene, unsigned nSeed, double fScale);

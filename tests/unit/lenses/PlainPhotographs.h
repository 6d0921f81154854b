/// \file
/// Pictures without an image circle that could be taken to have one; they are computed.
#pragma once

#include <vector>

enum EPhotograph : int
{
    PHOTO_DAY,
    PHOTO_NIGHT,         ///< lamps and lit walls, all else black
    PHOTO_SKYLINE,       ///< black sky over a lit town
    PHOTO_DARK_CORNERS,  ///< the lens loses light towards the corners
    PHOTO_BLACK_CORNERS, ///< as much of it that they are black
    PHOTO_TORCH,         ///< a beam of light that fades
    PHOTO_BARS,          ///< black bars beside the picture
    PHOTO_ROUNDED,       ///< a picture with round corners on black
    PHOTO_BOKEH,         ///< many bright discs on black
    PHOTO_SHADE,         ///< sunlight in a dark room
    PHOTO_TITLE,         ///< text on black
    // A disc on dark ground: from here on a circle may be thought likely.
    PHOTO_PLATE,
    PHOTO_MOON,
    PHOTO_WHEEL,
    PHOTO_DRUM, ///< a lit round opening, alike all around
    PHOTO_KINDS,
};

inline constexpr EPhotograph FIRST_ROUND_PHOTO = PHOTO_PLATE;

struct SPhotograph
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<unsigned char> vLuma;
};

const char* NameOf(EPhotograph ePhotograph);

SPhotograph DrawPhotograph(EPhotograph ePhotograph, unsigned nSeed, double fScale);

/// \file
/// What a layer is sampled from: an image in the frame's or an overlay's texels, and what is known of
/// rectangles of it without looking at every one.
///
/// Sources have Width, Height, and for texels inside
///
///     std::uint32_t At(int x, int y)          bytes R, G, B, A from the low one up; 0 where nothing is
///     ELayerClass Classify(x0, y0, x1, y1, rColour)
///     void Read(x0, y0, x1, y1, pTexels)      rows one behind the other
///
/// with the last column and row inside.
#pragma once

#include <cstdint>

enum ELayerClass : int
{
    LAYER_NONE,  ///< no texel has alpha
    LAYER_SOLID, ///< all have one colour
    LAYER_MIXED, ///< everything else, or nobody has looked closer
};

/// State of many texels in one number: 0 none has alpha, LAYER_STATE_MIXED, or the colour of all.
inline constexpr std::uint32_t LAYER_STATE_MIXED = 1;

inline ELayerClass ClassOfState(std::uint32_t nState)
{
    return nState == 0 ? LAYER_NONE : nState == LAYER_STATE_MIXED ? LAYER_MIXED : LAYER_SOLID;
}

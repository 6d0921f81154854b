/// \file
/// How places in the frame are counted while a view is drawn.
#pragma once

/// Fraction bits of a position in the frame's first plane; 0 is the middle of the first pixel. A cell whose
/// texels fit into 16 x 16 steps its positions in 16 bits.
inline constexpr int POSITION_BITS = 11;
inline constexpr int POSITION_ONE = 1 << POSITION_BITS;

/// \file
/// The built-in bitmap font: DejaVu Sans Mono, 96 characters, codes 32 to 127.
///
/// An atlas of nCols x nRows cells of 38 x 64 pixels, row by row, rows from the top: character c lies in cell
/// c - 32. Two bytes a pixel, luminance and alpha. The luminance is 255 everywhere and the alpha alone holds
/// the shape (straight alpha): a texel times the text's colour is that colour with the shape's coverage, so
/// edges show no dark seam over any background, however the atlas is filtered. Every character keeps a margin
/// of one empty pixel; cell 32 is empty and cell 127 is opaque to its very edge.
#pragma once

#include "platform/Export.h"

namespace GPU_FONT
{

extern LUMOR_API const int nW; ///< 608 pixels
extern LUMOR_API const int nH; ///< 384 pixels
extern LUMOR_API const int nCols;
extern LUMOR_API const int nRows;
extern LUMOR_API const unsigned char pGPU_FONT[466944]; ///< nW * nH * 2 bytes

} // namespace GPU_FONT

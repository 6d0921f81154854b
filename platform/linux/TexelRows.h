/// \file
/// Rows of 4:2:0 pictures to and from texels of (Y, U, V, 255).
#pragma once

/// One row of luma and the chroma row that belongs to it, to texels of 4 bytes. Chroma is repeated: each
/// value lies in the middle of its 2 x 2 texels. Reads nWidth luma bytes and (nWidth + 1) / 2 chroma pairs.
/// Thread: any.
void ExpandRow(const unsigned char* pLuma, const unsigned char* pChroma, bool bVFirst, int nWidth,
               unsigned char* pTexels);

/// Two rows of texels to two rows of luma and one of chroma, the rounded mean of 2 x 2 texels. A last odd row
/// is given twice; so counts a last odd column. Thread: any.
void PackRows(const unsigned char* pUpper, const unsigned char* pLower, int nWidth, bool bVFirst,
              unsigned char* pUpperLuma, unsigned char* pLowerLuma, unsigned char* pChroma);

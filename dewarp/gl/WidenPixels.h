/// \file
/// Pixels of 3 bytes made into pixels of 4.
#pragma once

/// Copies every pixel's 3 bytes in their order and adds 255 as the fourth; the result's rows lie side by
/// side. Units: pixels; nRowBytes from one row to the next, at least 3 a pixel. Owns: nothing; pTo has room
/// for 4 * nWidth * nHeight bytes. Thread: any. Fails: never; reads nothing behind a row's last pixel.
void WidenPixels(const unsigned char* pFrom, int nRowBytes, int nWidth, int nHeight, unsigned char* pTo);

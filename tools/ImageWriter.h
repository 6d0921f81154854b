/// \file
/// Finished pictures to files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A picture of B, G, R, A bytes, top row first. The pixels belong to whoever made the record.
struct SPicture
{
    const unsigned char* pPixels = nullptr;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0; ///< bytes a row
};

enum class EOutputKind
{
    PNG,
    RAW,
};

/// By the ending of the name, in any case. Throws CToolError (EXIT_USAGE) for another ending.
EOutputKind GetOutputKind(const std::string& strPath);

/// The file's bytes: a PNG of 8-bit RGB (the picture is opaque), or the rows without padding.
/// Fails: throws CToolError.
std::vector<unsigned char> EncodePicture(const SPicture& sPicture, EOutputKind eKind);

/// A PNG of 16-bit grey values, rows without padding. Fails: throws CToolError.
std::vector<unsigned char> EncodeGray16(const std::uint16_t* pValues, int nWidth, int nHeight);

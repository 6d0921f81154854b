/// \file
/// What each texture unit is for, and what the copying passes read.
#pragma once

#include <GLES3/gl31.h>

/// Fixed units; the shader texts' samplers are set to them once, when a program is made.
enum ETextureUnit : int
{
    UNIT_INPUT = 0, ///< RGB, Y, or the external image
    UNIT_UV = 1,
    UNIT_U = 1,
    UNIT_V = 2,
    UNIT_QP = 3,
    UNIT_MB_TYPE = 4,
    UNIT_INPUT_OVERLAY = 5,
    UNIT_VIEW = 6, ///< the view, before text and output overlay
    UNIT_OUTPUT_OVERLAY = 7,
    UNIT_FONT = 8,
    UNIT_VIEW_COPY = 9,
    UNIT_MASK_A = 10,
    UNIT_MASK_B = 11,
    UNIT_STRING_A = 12,
    UNIT_STRING_B = 13,
};

/// Units whose texture sizes are kept on record.
inline constexpr int RECORDED_UNITS = 16;

/// A unit as glActiveTexture takes it.
inline constexpr unsigned int GLUnit(int nUnit)
{
    return GL_TEXTURE0 + static_cast<unsigned int>(nUnit);
}

/// What a copying pass reads and where it draws.
enum ECopySource : int
{
    COPY_VIEW_TO_SCREEN = 0,
    COPY_VIEW_TO_COPY = 1,
    COPY_COPY_TO_SCREEN = 2,
    COPY_MASKS_TO_INPUT_OVERLAY = 3
};

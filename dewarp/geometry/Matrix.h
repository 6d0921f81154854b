/// \file
/// 4x4 float matrices, column-major (element = column * 4 + row), as OpenGL takes them without transposing.
#pragma once

#include "platform/Export.h"

/// Writes the rotation of fAngle degrees about the axis (x, y, z) to the 16 floats at pMatrix[nOffset]. An
/// axis that is not of length 1 is normalised.
/// Source: OpenGL ES 1.1 reference page of glRotate.
LUMOR_API void setRotateM(float* pMatrix, int nOffset, float fAngle, float x, float y, float z);

/// Multiplies the matrix at pMatrix[nOffset] from the right: m = m x R. The rotation acts on the model before
/// what m did so far.
LUMOR_API void rotateM(float* pMatrix, int nOffset, float fAngle, float x, float y, float z);

/// Multiplies the matrix from the right with the translation by (x, y, z).
LUMOR_API void TranslateMatrix(float* pMatrix, float x, float y, float z);

/// pResult = pLeft x pRight. The result must not be one of the factors.
LUMOR_API void MultiplyMatrices(float* pResult, const float* pLeft, const float* pRight);

LUMOR_API void SetIdentityMatrix(float* pMatrix);

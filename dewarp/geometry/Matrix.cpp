#include "dewarp/geometry/Matrix.h"

#include <cmath>
#include <cstring>

namespace
{

const float RADIANS_PER_DEGREE = 0.017453292f;

/// Rotation about any axis of length other than 0. The three main axes are told apart by the caller.
void SetGeneralRotation(float* m, float s, float c, float x, float y, float z)
{
    const float fLength = std::sqrt(x * x + y * y + z * z);
    if (fLength != 1.0f) {
        x /= fLength;
        y /= fLength;
        z /= fLength;
    }
    const float nc = 1.0f - c;
    m[0] = x * x * nc + c;
    m[4] = x * y * nc - z * s;
    m[8] = x * z * nc + y * s;
    m[1] = y * x * nc + z * s;
    m[5] = y * y * nc + c;
    m[9] = y * z * nc - x * s;
    m[2] = x * z * nc - y * s;
    m[6] = y * z * nc + x * s;
    m[10] = z * z * nc + c;
}

} // namespace

void setRotateM(float* pMatrix, int nOffset, float fAngle, float x, float y, float z)
{
    float* m = pMatrix + nOffset;
    const float fRadians = fAngle * RADIANS_PER_DEGREE;
    const float s = std::sin(fRadians);
    const float c = std::cos(fRadians);
    m[3] = m[7] = m[11] = m[12] = m[13] = m[14] = 0.0f;
    m[15] = 1.0f;
    if (x == 1.0f && y == 0.0f && z == 0.0f) {
        m[5] = m[10] = c;
        m[6] = s;
        m[9] = -s;
        m[1] = m[2] = m[4] = m[8] = 0.0f;
        m[0] = 1.0f;
    } else if (x == 0.0f && y == 1.0f && z == 0.0f) {
        m[0] = m[10] = c;
        m[8] = s;
        m[2] = -s;
        m[1] = m[4] = m[6] = m[9] = 0.0f;
        m[5] = 1.0f;
    } else if (x == 0.0f && y == 0.0f && z == 1.0f) {
        m[0] = m[5] = c;
        m[1] = s;
        m[4] = -s;
        m[2] = m[6] = m[8] = m[9] = 0.0f;
        m[10] = 1.0f;
    } else {
        SetGeneralRotation(m, s, c, x, y, z);
    }
}

void rotateM(float* pMatrix, int nOffset, float fAngle, float x, float y, float z)
{
    float* m = pMatrix + nOffset;
    float aRotation[16];
    float aProduct[16];
    setRotateM(aRotation, 0, fAngle, x, y, z);
    MultiplyMatrices(aProduct, m, aRotation);
    std::memcpy(m, aProduct, sizeof(aProduct));
}

void TranslateMatrix(float* pMatrix, float x, float y, float z)
{
    for (int i = 0; i < 4; ++i)
        pMatrix[12 + i] += x * pMatrix[i] + y * pMatrix[4 + i] + z * pMatrix[8 + i];
}

void MultiplyMatrices(float* pResult, const float* pLeft, const float* pRight)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            float fSum = pRight[i * 4] * pLeft[j];
            for (int k = 1; k < 4; ++k)
                fSum += pRight[i * 4 + k] * pLeft[k * 4 + j];
            pResult[i * 4 + j] = fSum;
        }
    }
}

void SetIdentityMatrix(float* pMatrix)
{
    for (int i = 0; i < 16; ++i)
        pMatrix[i] = i % 5 == 0 ? 1.0f : 0.0f;
}

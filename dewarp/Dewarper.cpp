#include "dewarp/Dewarper.h"

#include "dewarp/views/ViewList.h"

#include <cstddef>

bool CDewarper::GetTargetSize(int& nWidth, int& nHeight)
{
    nWidth = nHeight = 0;
    return false;
}

void CDewarper::SetDriverLog(bool /*bErrors*/, bool /*bShaderTexts*/) {}

bool CDewarper::DrawTo(void* pTarget, int nStride, EImageFormat eFormat)
{
    SFrameTarget sTarget;
    sTarget.eFormat = eFormat;
    sTarget.apPlanes[0] = static_cast<unsigned char*>(pTarget);
    sTarget.anStrides[0] = nStride;
    int nWidth = 0;
    int nHeight = 0;
    // What is not a target is refused by who draws: without the planes that follow it is none.
    if (pTarget == nullptr || nStride < 1 || !GetTargetSize(nWidth, nHeight))
        return DrawTo(sTarget);
    unsigned char* pPlane = sTarget.apPlanes[0] + static_cast<std::ptrdiff_t>(nStride) * nHeight;
    if (eFormat == IMAGE_FORMAT_NV12) {
        sTarget.apPlanes[1] = pPlane;
        sTarget.anStrides[1] = nStride;
    } else if (eFormat == IMAGE_FORMAT_YUV420P) {
        const int nChromaStride = nStride / 2 + nStride % 2;
        for (int i = 1; i < 3; ++i) {
            sTarget.apPlanes[i] = pPlane;
            sTarget.anStrides[i] = nChromaStride;
            pPlane += static_cast<std::ptrdiff_t>(nChromaStride) * (nHeight / 2 + nHeight % 2);
        }
    }
    return DrawTo(sTarget);
}

void CDewarper::GetDefaultPTZ(EViewType eView, EMountType eMount, float& fPan, float& fTilt, float& fZoom)
{
    const SPTZ sPTZ = FindView(eView, eMount).DefaultPTZ(eMount);
    fPan = sPTZ.fPan;
    fTilt = sPTZ.fTilt;
    fZoom = sPTZ.fZoom;
}

void CDewarper::GetDefaultSize(EViewType eView, EMountType eMount, int nInputWidth, int nInputHeight,
                               int& nWidth, int& nHeight)
{
    GetDefaultSize(eView, eMount, SViewShape(), nInputWidth, nInputHeight, nWidth, nHeight);
}

void CDewarper::GetDefaultSize(EViewType eView, EMountType eMount, const SViewShape& rShape, int nInputWidth,
                               int nInputHeight, int& nWidth, int& nHeight)
{
    SDewarpParams sParams;
    sParams.sShape = rShape;
    sParams.eViewType = eView;
    sParams.eMountType = eMount;
    sParams.nImageWidth = nInputWidth;
    sParams.nImageHeight = nInputHeight;
    FindView(eView, eMount).DefaultSize(sParams, nWidth, nHeight);
}

const char* CDewarper::GetViewName(EViewType eView)
{
    for (const SViewEntry& rEntry : ListViews()) {
        if (rEntry.eType == eView)
            return rEntry.pName;
    }
    return nullptr;
}

EViewType CDewarper::FindViewType(const std::string& strName)
{
    for (const SViewEntry& rEntry : ListViews()) {
        if (strName == rEntry.pName)
            return rEntry.eType;
    }
    return VIEW_UNSET;
}

std::vector<std::string> CDewarper::ListViewNames()
{
    std::vector<std::string> vNames;
    for (const SViewEntry& rEntry : ListViews())
        vNames.emplace_back(rEntry.pName);
    return vNames;
}

// Where things are in the picture: one point at a time, and nothing where nobody knows.

int CDewarper::ViewToFrame(const SPointD* /*pPoints*/, SPointD* pResults, bool* pValid, int nCount)
{
    return FindNoPoints(pResults, pValid, nCount);
}

int CDewarper::FrameToView(const SPointD* /*pPoints*/, SPointD* pResults, bool* pValid, int nCount)
{
    return FindNoPoints(pResults, pValid, nCount);
}

bool CDewarper::ViewToFrame(double x, double y, double& fFrameX, double& fFrameY)
{
    SPointD sPoint = {x, y};
    if (ViewToFrame(&sPoint, &sPoint, nullptr, 1) != 1)
        return false;
    fFrameX = sPoint.x;
    fFrameY = sPoint.y;
    return true;
}

bool CDewarper::FrameToView(double fFrameX, double fFrameY, double& x, double& y)
{
    SPointD sPoint = {fFrameX, fFrameY};
    if (FrameToView(&sPoint, &sPoint, nullptr, 1) != 1)
        return false;
    x = sPoint.x;
    y = sPoint.y;
    return true;
}

int CDewarper::ViewToDirection(const SPointD* /*pPoints*/, SDirection* pResults, bool* pValid, int nCount)
{
    return FindNoDirections(pResults, pValid, nCount);
}

int CDewarper::DirectionToView(const SDirection* /*pDirections*/, SPointD* pResults, bool* pValid, int nCount)
{
    return FindNoPoints(pResults, pValid, nCount);
}

int CDewarper::FrameToDirection(const SPointD* /*pPoints*/, SDirection* pResults, bool* pValid, int nCount)
{
    return FindNoDirections(pResults, pValid, nCount);
}

bool CDewarper::LookAt(double /*fFrameX*/, double /*fFrameY*/)
{
    return false;
}

bool CDewarper::LookAtView(double /*x*/, double /*y*/)
{
    return false;
}

bool CDewarper::ViewToDirection(double x, double y, SDirection& rDirection)
{
    const SPointD sPoint = {x, y};
    SDirection sResult;
    if (ViewToDirection(&sPoint, &sResult, nullptr, 1) != 1)
        return false;
    rDirection = sResult;
    return true;
}

bool CDewarper::DirectionToView(const SDirection& rDirection, double& x, double& y)
{
    SPointD sResult;
    if (DirectionToView(&rDirection, &sResult, nullptr, 1) != 1)
        return false;
    x = sResult.x;
    y = sResult.y;
    return true;
}

bool CDewarper::FrameToDirection(double fFrameX, double fFrameY, SDirection& rDirection)
{
    const SPointD sPoint = {fFrameX, fFrameY};
    SDirection sResult;
    if (FrameToDirection(&sPoint, &sResult, nullptr, 1) != 1)
        return false;
    rDirection = sResult;
    return true;
}

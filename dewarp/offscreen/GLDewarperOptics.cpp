// What the host says about its camera, the sampling and panes, and where things are in the picture.

#include "dewarp/CustomGPUDewarper.h"
#include "dewarp/offscreen/GLDewarper.h"

#include <utility>

bool CGLDewarper::SetLens(const SLens& rLens)
{
    return Engine().SetLens(rLens);
}

bool CGLDewarper::SetImageCircle(float fCenterX, float fCenterY, float fRadiusX, float fRadiusY)
{
    return Engine().SetImageCircle(fCenterX, fCenterY, fRadiusX, fRadiusY);
}

bool CGLDewarper::GetImageCircle(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY)
{
    return Engine().GetImageCircle(fCenterX, fCenterY, fRadiusX, fRadiusY);
}

bool CGLDewarper::SetMountOrientation(float fYaw, float fPitch, float fRoll)
{
    return Engine().SetMountOrientation(fYaw, fPitch, fRoll);
}

void CGLDewarper::GetMountOrientation(float& fYaw, float& fPitch, float& fRoll)
{
    Engine().GetMountOrientation(fYaw, fPitch, fRoll);
}

void CGLDewarper::SetCleanRim(bool bClean)
{
    Engine().SetCleanRim(bClean);
}

bool CGLDewarper::GetCleanRim()
{
    return Engine().GetCleanRim();
}

void CGLDewarper::SetRoll(float fDegrees)
{
    Engine().SetRoll(fDegrees);
}

float CGLDewarper::GetRoll()
{
    return Engine().GetRoll();
}

bool CGLDewarper::SetViewShape(const SViewShape& rShape)
{
    return Engine().SetViewShape(rShape);
}

SViewShape CGLDewarper::GetViewShape()
{
    return Engine().GetViewShape();
}

int CGLDewarper::ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    return Engine().ViewToFrame(pPoints, pResults, pValid, nCount);
}

int CGLDewarper::FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    return Engine().FrameToView(pPoints, pResults, pValid, nCount);
}

int CGLDewarper::ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount)
{
    return Engine().ViewToDirection(pPoints, pResults, pValid, nCount);
}

int CGLDewarper::DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount)
{
    return Engine().DirectionToView(pDirections, pResults, pValid, nCount);
}

int CGLDewarper::FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount)
{
    return Engine().FrameToDirection(pPoints, pResults, pValid, nCount);
}

bool CGLDewarper::LookAt(double fFrameX, double fFrameY)
{
    return Engine().LookAt(fFrameX, fFrameY);
}

bool CGLDewarper::LookAtView(double x, double y)
{
    return Engine().LookAtView(x, y);
}

bool CGLDewarper::SetSampling(ESampling eSampling)
{
    return Engine().SetSampling(eSampling);
}

ESampling CGLDewarper::GetSampling()
{
    return Engine().GetSampling();
}

void CGLDewarper::SetMinification(bool bAverage)
{
    Engine().SetMinification(bAverage);
}

bool CGLDewarper::GetMinification()
{
    return Engine().GetMinification();
}

bool CGLDewarper::SetPanes(std::vector<SPane> vPanes)
{
    return Engine().SetPanes(std::move(vPanes));
}

std::vector<SPane> CGLDewarper::GetPanes()
{
    return Engine().GetPanes();
}

bool CGLDewarper::SetPaneGap(int nPixels, unsigned int nColor)
{
    return Engine().SetPaneGap(nPixels, nColor);
}

bool CGLDewarper::SelectPane(int nPane)
{
    return Engine().SelectPane(nPane);
}

int CGLDewarper::GetSelectedPane()
{
    return Engine().GetSelectedPane();
}

bool CGLDewarper::SetFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp)
{
    return Engine().SetFrame(rFrame, nTimestamp);
}

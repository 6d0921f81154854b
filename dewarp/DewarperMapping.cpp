// Where things are in the picture: one point at a time, and nothing where nobody knows.

#include "dewarp/Dewarper.h"

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

#include "dewarp/lenses/BodyTurn.h"

#include <algorithm>
#include <cmath>
#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;

/// rFirst towards rSecond by an angle, and rSecond away from where rFirst was.
static void TurnTowards(SDirection& rFirst, SDirection& rSecond, double fDegrees)
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    const SDirection a = rFirst;
    const SDirection b = rSecond;
    rFirst = {c * a.x + s * b.x, c * a.y + s * b.y, c * a.z + s * b.z};
    rSecond = {c * b.x - s * a.x, c * b.y - s * a.y, c * b.z - s * a.z};
}

CBodyTurn::CBodyTurn(const SMountOrientation& rOrientation)
{
    TurnTowards(m_sAhead, m_sRight, static_cast<double>(rOrientation.fYaw));
    TurnTowards(m_sAhead, m_sUp, static_cast<double>(rOrientation.fPitch));
    TurnTowards(m_sUp, m_sRight, static_cast<double>(rOrientation.fRoll));
}

double CBodyTurn::Lean() const
{
    return std::acos(std::clamp(m_sAhead.z, -1.0, 1.0)) / RADIANS;
}

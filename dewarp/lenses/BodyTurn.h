/// \file
/// From where a mount says that a camera looks to where its body does.
#pragma once

#include "dewarp/records/SDirection.h"
#include "dewarp/records/SMountOrientation.h"

/// The axes of a body that is yawed, then pitched, then rolled about its own axes. Thread: any. Fails: never.
class CBodyTurn
{
public:
    CBodyTurn() = default;
    explicit CBodyTurn(const SMountOrientation& rOrientation);

    /// A direction of the mount as the body sees it.
    SDirection ToBody(const SDirection& d) const
    {
        return {Dot(d, m_sRight), Dot(d, m_sUp), Dot(d, m_sAhead)};
    }
    /// A direction of the body as the mount counts it.
    SDirection ToMount(const SDirection& d) const
    {
        return {d.x * m_sRight.x + d.y * m_sUp.x + d.z * m_sAhead.x,
                d.x * m_sRight.y + d.y * m_sUp.y + d.z * m_sAhead.y,
                d.x * m_sRight.z + d.y * m_sUp.z + d.z * m_sAhead.z};
    }
    /// Degrees between the optical axes of mount and body.
    double Lean() const;

private:
    static double Dot(const SDirection& a, const SDirection& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

    SDirection m_sRight = {1.0, 0.0, 0.0};
    SDirection m_sUp = {0.0, 1.0, 0.0};
    SDirection m_sAhead = {0.0, 0.0, 1.0};
};

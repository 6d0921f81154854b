/// \file
/// What the rounds found, as a table and as JSON.
#pragma once

#include "bench/peers/Rounds.h"

/// One case, its view still or moving.
struct SPeerReport
{
    SPeerCase sCase;
    bool bMoving = false;
    SRoundsResult sResult;
    std::vector<std::pair<std::string, double>> vPSNR; ///< decibels between our view and another's
};

/// "1920x1920 NV12/yuv420p to 1920x1080".
std::string CaseTitle(const SPeerCase& rCase);
/// Prints a case's lines.
void PrintReport(const SPeerReport& rReport);
/// Writes all cases to a file. False when it cannot be written.
bool WriteJSON(const std::vector<SPeerReport>& vReports, const std::string& strPath);

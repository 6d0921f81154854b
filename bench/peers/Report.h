/// \file
/// What the rounds found, as a table and as JSON.
#pragma once

#include "bench/peers/Rounds.h"

/// What one thing costs: the difference of two contenders that differ in it alone.
struct SPeerCost
{
    std::string strName;
    std::size_t nWith = 0; ///< numbers of contenders
    std::size_t nWithout = 0;
};

/// One case, its view still or moving.
struct SPeerReport
{
    std::string strGroup; ///< which table it belongs to
    std::string strTitle;
    SPeerCase sCase;
    bool bMoving = false;
    int nViews = 1; ///< drawn in one frame
    SRoundsResult sResult;
    std::vector<std::pair<std::string, double>> vPSNR; ///< decibels between our view and another's
    std::vector<SPeerCost> vCosts;
};

/// "1920x1920 NV12/yuv420p to 1920x1080".
std::string CaseTitle(const SPeerCase& rCase);
/// What draws, and with how many threads.
void PrintHead(const std::string& strEngine, int nThreads);
/// Prints a case's lines.
void PrintReport(const SPeerReport& rReport);
/// Writes all cases to a file. False when it cannot be written.
bool WriteJSON(const std::vector<SPeerReport>& vReports, const std::string& strEngine,
               const std::string& strPath);

/// \file
/// Runs the tool as a user does.
#pragma once

#include "TestPictures.h"

#include <string>
#include <vector>

struct SToolRun
{
    int nStatus = -1; ///< exit status; 1000 + number for a signal
    std::string strOutput;
    std::string strErrors;
};

/// Runs a program and waits for its end.
SToolRun RunProgram(const std::string& strProgram, const std::vector<std::string>& vArguments);

/// Runs lumor-dewarp.
SToolRun RunTool(const std::vector<std::string>& vArguments);

/// Runs it with the options, INPUT, and a .raw output; fails the test unless it succeeds. BGRA rows.
TBytes DewarpRaw(const CTempFolder& oFolder, std::vector<std::string> vOptions, const std::string& strInput);

int CountLines(const std::string& strText);

/// One pixel of BGRA rows.
SColor GetPixel(const TBytes& vRows, int nWidth, int x, int y);
/// The largest difference of two pictures of the same size; 256 when the sizes differ.
int GetLargestDifference(const TBytes& vFirst, const TBytes& vSecond);

/// \file
/// Numbers as people read them, the same in every locale.
#pragma once

#include <string>

/// As few digits as tell the number from its neighbours: 0.1, 280, 1e+06. Thread: any. Fails: never.
std::string NumberText(double fValue);
/// With so many digits after the point. Sizes from 1e15 on are written as NumberText does.
std::string FixedText(double fValue, int nDecimals);
/// The whole text as one finite number; a leading + is allowed.
bool ReadNumber(const std::string& strText, double& rValue);

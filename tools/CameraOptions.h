/// \file
/// The camera that the command line describes: lens, circle, how the body hangs.
#pragma once

#include "Frame.h"
#include "Options.h"

#include <string>
#include <vector>

/// --lens: a known lens, MODEL:FIELD such as equidistant:200, or a lens file. Throws CToolError.
void ReadLens(const std::string& strText, SToolOptions& rOptions);
/// --circle: CX,CY,R[,RY] or auto. Throws CToolError.
void ReadCircle(const std::string& strText, SToolOptions& rOptions);
/// --mount-orientation: YAW,PITCH,ROLL. Throws CToolError.
SOrientation ReadOrientation(const std::string& strText);

/// --span: HORIZONTAL[,VERTICAL]; --band: UPPER,LOWER. Degrees. Throws CToolError.
void ReadSpan(const std::string& strText, SViewShape& rShape);
void ReadBand(const std::string& strText, SViewShape& rShape);

/// Looks for the circle where it was asked for, or where nothing was said and the frame is no known camera's;
/// puts what it found into the options. Returns what there is to say about it. Throws CToolError when a
/// circle was asked for and there is none.
std::vector<std::string> SettleCircle(const SFrame& rFrame, SToolOptions& rOptions);

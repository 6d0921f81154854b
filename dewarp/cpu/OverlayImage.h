#pragma once
#include "dewarp/records/SGRect.h"
#include "platform/Report.h"
#include <vector>
class COverlayImage
{
public:
    int Set(const unsigned char*, int, int, const std::vector<SGRect>&, CReport&) { return 1; }
};

/// \file
/// The content of a lens file as a tree of values, whichever language it was written in.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// Groups, lists, texts and finite numbers.
using TLensTree = nlohmann::json;

/// JSON, or YAML as OpenCV's calibration programs write it. Nothing is nested deeper than eight, no key
/// stands twice in a group. Thread: any. Fails: throws CToolError with the name and the line.
TLensTree ParseLensTree(const std::string& strName, const std::string& strBytes);

/// \file
/// YAML to a tree of values.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

/// What is wrong with a text, with its line where that is known.
class CYAMLFault : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The first document of a text, whose head may be the one that OpenCV writes. Tags count for nothing; what
/// reads as a finite number is one. Repeated parts (anchors) are refused: nothing grows beyond what was
/// written. Thread: any. Fails: throws CYAMLFault.
nlohmann::json ParseYAMLTree(const std::string& strText, int nDeepest);

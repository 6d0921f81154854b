/// \file
/// Driver dialect: adapts shader text to what a driver can take. Every text goes to the driver as it is
/// first; only when the driver refuses it, the adapted copy is tried.
#pragma once

#include <string>

/// A copy of a shader text in which what this driver lacks is replaced: implicit conversions of integer
/// literals, YUV targets, external YUV samplers. Empty when there is nothing to replace.
/// GL thread, context current (asks for the driver's extensions).
std::string AdaptShaderText(const std::string& strText);

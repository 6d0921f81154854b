/// \file
/// Tag of every log line of the library.
#pragma once

inline constexpr char DEWARP_LOG_TAG[] = "LUMORVIDEOMANAGER_DEWRAP";

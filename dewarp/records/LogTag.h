/// \file
/// Tag of every log line of the library.
#pragma once

inline constexpr char LOG_TAG[] = "LUMORVIDEOMANAGER_DEWRAP";

/// \file
/// What --help of the lens commands prints.
#pragma once

extern const char* const LENS_HELP;
extern const char* const LENS_CHECK_HELP;
extern const char* const LENS_FIT_HELP;

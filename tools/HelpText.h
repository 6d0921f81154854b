/// \file
#pragma once

/// What --help prints.
extern const char* const HELP_TEXT;

/// \file
/// What the library shows to programs that link it.
#pragma once

/// In front of the name of a class or record, or of a function: it is part of the library's interface. All
/// else is hidden: the library is compiled so, and hosts cannot come to depend on it.
#define LUMOR_API __attribute__((visibility("default")))

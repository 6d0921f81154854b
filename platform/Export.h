/// \file
/// What the library shows to programs that link it.
#pragma once

/// In front of the name of a class or record, or of a function: it is part of the library's interface. All
/// else is hidden: the library is compiled so, and hosts cannot come to depend on it.
#define LUMOR_API __attribute__((visibility("default")))

/// The same for what one of the library's two parts has of the other: the core shows it to what draws with
/// OpenGL ES. No installed header has it; hosts cannot count on it from one version to the next.
#define LUMOR_INTERNAL_API __attribute__((visibility("default")))

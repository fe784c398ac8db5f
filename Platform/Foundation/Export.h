#pragma once

/// Marks what hosts may call of the installed library: classes with members that are not inline, and functions, of the
/// headers that are installed. The library is compiled with everything else hidden, so that what hosts see is what
/// headers promise, its own calls need no detour through the dynamic linker, and its names cannot clash with a host's.
/// Values whose members are all inline need no mark. In a static library, and in programs, it changes nothing.
#if defined(__GNUC__)
#define KELVARA_EXPORT __attribute__((visibility("default")))
#else
#define KELVARA_EXPORT
#endif

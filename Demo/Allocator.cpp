#include "Demo/Allocator.h"

#include <cstdlib> // says whose library it is

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace kelvara::demo {

void keepLittleFreedMemory()
{
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 2 << 20);
    mallopt(M_ARENA_MAX, 1);
#endif
}

void returnFreedMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace kelvara::demo

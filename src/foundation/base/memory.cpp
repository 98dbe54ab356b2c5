#include "foundation/base/memory.h"

#include <cstdlib>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace tq {

void keepHeapHeadroom()
{
#if defined(__GLIBC__)
    mallopt(M_TOP_PAD, 32 * 1024 * 1024);
#endif
}

}  // namespace tq

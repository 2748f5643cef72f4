#include "Optimize.h"

#include "../primitives/ippcore.h"

namespace Processors {

// A processor that isn't a GenuineIntel one still gets the variant its features allow, so the
// status says nothing the library acts on.
COptimize::COptimize()
{
    ippStaticInit();
}

} // namespace Processors

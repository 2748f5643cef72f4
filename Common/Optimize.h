#pragma once

namespace Processors {

// Has the primitive layer choose its processor variant (ippStaticInit, status dropped). The
// library makes one during its static initialisation, before any frame is touched and before
// any thread of its own exists.
class COptimize {
public:
    COptimize();
};

} // namespace Processors

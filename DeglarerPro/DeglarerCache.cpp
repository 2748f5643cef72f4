#include "Deglarer.h"

bool CDeglarer::RenderUsingCache(IVideoHost*, FrameParams* source, FrameParams*, FrameParams* destination,
                                 RenderInfo*)
{
    return CopySourceToDestination(source, destination);
}

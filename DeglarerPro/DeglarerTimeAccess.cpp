#include "Deglarer.h"

bool CDeglarer::RenderUsingTimeAccess(IVideoHost*, FrameParams* source, FrameParams*, FrameParams* destination,
                                      RenderInfo*)
{
    return CopySourceToDestination(source, destination);
}

#include "ThresholdLTInPlace.h"

#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

bool CThresholdLTInPlace::Process(CFrame* pFrame, const float* pThreshold)
{
    if (pFrame == nullptr || !IsFourFloatPicture(*pFrame))
        return false;
    const IppiSize whole = {pFrame->m_nWidth, pFrame->m_nHeight};
    // The floor is also what a sample below it becomes.
    return ippiThreshold_LTVal_32f_C4IR(reinterpret_cast<Ipp32f*>(pFrame->m_pBuffer), pFrame->m_nByteSpan, whole,
                                        pThreshold, pThreshold) == ippStsNoErr;
}

} // namespace Processors

#include "SqrtInPlace.h"

#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

bool CSqrtInPlace::Process(CFrame* pFrame)
{
    if (pFrame == nullptr || !IsFourFloatPicture(*pFrame))
        return false;
    const IppiSize whole = {pFrame->m_nWidth, pFrame->m_nHeight};
    return ippiSqrt_32f_C4IR(reinterpret_cast<Ipp32f*>(pFrame->m_pBuffer), pFrame->m_nByteSpan, whole) == ippStsNoErr;
}

} // namespace Processors

#include "SqrInPlace.h"

#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

bool CSqrInPlace::Process(CFrame* pFrame)
{
    if (pFrame == nullptr || !IsFourFloatPicture(*pFrame))
        return false;
    const IppiSize whole = {pFrame->m_nWidth, pFrame->m_nHeight};
    return ippiSqr_32f_C4IR(reinterpret_cast<Ipp32f*>(pFrame->m_pBuffer), pFrame->m_nByteSpan, whole) == ippStsNoErr;
}

} // namespace Processors

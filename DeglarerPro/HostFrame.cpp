#include "HostFrame.h"

#include "../include/VideoHost.h"
#include "Deglarer.h"

CHostFrame::CHostFrame(IVideoHost* host, PixelFormat format) : m_pHost(host), m_pHandle(nullptr)
{
    // An empty frame asks for no particular geometry and only names its format.
    m_frame.m_pfPixelFormat = format;
}

CHostFrame::~CHostFrame()
{
    if (m_pHandle == nullptr)
        return;
    FrameParams params = m_frame.GetFrameParams();
    m_pHost->ReleaseFrame(m_pHandle, &params);
}

bool CHostFrame::Fetch(int frameIndex, RenderInfo* info)
{
    if (m_pHandle != nullptr)
        return false;
    m_pHandle = CDeglarer::GetFrameByIndex(frameIndex, m_frame, m_pHost, info);
    return m_pHandle != nullptr;
}

#pragma once
#include "../Common/Frame.h"
#include "../include/PixelFormat.h"

class IVideoHost;
struct RenderInfo;

// A frame of the clip fetched from the host by its index, given back with ReleaseFrame when the
// object goes out of scope, on every way out.
class CHostFrame {
public:
    CHostFrame(IVideoHost* host, PixelFormat format);
    ~CHostFrame();
    CHostFrame(const CHostFrame&) = delete;
    CHostFrame& operator=(const CHostFrame&) = delete;

    // False when the host gave no frame.
    bool Fetch(int frameIndex, RenderInfo* info);
    CFrame& Frame() { return m_frame; }

private:
    IVideoHost* m_pHost;
    void* m_pHandle;
    CFrame m_frame;
};

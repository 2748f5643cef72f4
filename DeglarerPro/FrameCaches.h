#pragma once
#include <boost/shared_ptr.hpp>

#include "../Common/EffectsLibCacheMT.h"
#include "FlashInfo.h"

typedef CEffectsLibCacheMT<FlashInfo> FrameCache;

// The memories of one effect id, one per field value.
struct FrameCaches {
    boost::shared_ptr<FrameCache> m_pField3;
    boost::shared_ptr<FrameCache> m_pField1;
    boost::shared_ptr<FrameCache> m_pField2;
};

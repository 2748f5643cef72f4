#pragma once
#include "TSString.h"

// Reads a URL whole. It blocks its caller for up to its time-out, so it belongs on a control
// path or a worker, never on a render thread.
class URLReader {
public:
    virtual ~URLReader() {}

    // The exact bytes of the body of a GET with no cached answer; empty on any failure.
    TSString GetUrl(const TSString& url);

    static constexpr double kTimeoutSeconds = 10.0;
    // Nothing the library reads comes near this; a larger answer is a failure.
    static const size_t kLargestBody = 4 << 20;
};

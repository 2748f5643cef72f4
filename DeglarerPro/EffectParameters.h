#pragma once

class IVideoHost;

// The three parameters as both render paths use them.
struct DecodedParameters {
    float threshold;   // the flash threshold, 0.1 at sensitivity 0 down to 0.01 at sensitivity 1
    int limit;         // "Max Frames": 1 to 10
    bool test;         // "Test mode"
};

// Reads the control positions through the host's GetParamValue and decodes them, all in single
// precision. A null host or a parameter the host can't give reads as position 0.
DecodedParameters DecodeParameters(IVideoHost* host);

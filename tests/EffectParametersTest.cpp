#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/EffectParameters.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"

namespace {

uint32_t Bits(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

struct Fixture {
    TestHost::Clip clip{4, 4, pfVideoSample, 1, 25.0};
    TestHost::InProcessHost host{clip};
};

TEST(EffectParameters, SensitivityIsQuantisedDownToTenths)
{
    // The thresholds of the ten tenths, to the four places they are known by.
    const float thresholds[11] = {0.1f,    0.0991f, 0.0964f, 0.0919f, 0.0856f, 0.0775f,
                                  0.0676f, 0.0559f, 0.0424f, 0.0271f, 0.01f};
    for (int tenth = 0; tenth <= 10; ++tenth) {
        Fixture f;
        f.host.SetSensitivity(tenth / 10.0f + 0.001f);
        const float atStep = DecodeParameters(&f.host).threshold;
        EXPECT_NEAR(atStep, thresholds[tenth], 5e-7f) << tenth;
        if (tenth < 10) {
            f.host.SetSensitivity(tenth / 10.0f + 0.099f);
            EXPECT_EQ(Bits(DecodeParameters(&f.host).threshold), Bits(atStep)) << tenth;
        }
    }
}

TEST(EffectParameters, StockPresetsGiveTheirFrameLimits)
{
    const int limits[8] = {4, 4, 1, 10, 3, 1, 1, 4};
    const bool testModes[8] = {false, false, true, true, true, false, false, false};
    for (unsigned int preset = 0; preset < 8; ++preset) {
        Fixture f;
        CDeglarer effect;
        ASSERT_TRUE(f.host.ApplyPreset(&effect, preset));
        const DecodedParameters decoded = DecodeParameters(&f.host);
        EXPECT_EQ(decoded.limit, limits[preset]) << preset;
        EXPECT_EQ(decoded.test, testModes[preset]) << preset;
    }
    // The default positions: sensitivity 0.7 and two frames. Each parameter is asked for with the
    // type its setup states; the host records a fault otherwise.
    Fixture f;
    const DecodedParameters defaults = DecodeParameters(&f.host);
    EXPECT_EQ(defaults.limit, 2);
    EXPECT_NEAR(defaults.threshold, 0.0559f, 5e-7f);
    EXPECT_FALSE(defaults.test);
    EXPECT_EQ(f.host.ParamReads(), 3u);
    EXPECT_EQ(f.host.Leaks(), "");
}

TEST(EffectParameters, PositionsBeyondTheSliderActAsItsEnds)
{
    struct Case {
        float sensitivity, maxFrames;
        float threshold;
        int limit;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float huge = std::numeric_limits<float>::max();
    const Case cases[] = {
        {-0.05f, -0.05f, 0.1f, 1},   {-3.0f, -3.0f, 0.1f, 1},     {1.05f, 1.05f, 0.01f, 10},
        {7.0f, 7.0f, 0.01f, 10},     {huge, huge, 0.01f, 10},    {nan, nan, 0.1f, 1},
        {0.5f, 0.999f, 0.0775f, 9},  {0.5f, 0.111f, 0.0775f, 1},
        // 0.7 x 10 rounds to 7.0 in single precision, so position 0.70 is tenth 7.
        {0.70f, 0.2f, 0.0559f, 2},   {0.79f, 0.2f, 0.0559f, 2},   {1.0f, 0.0f, 0.01f, 1},     {0.0f, 1.0f, 0.1f, 10},
    };
    for (const Case& c : cases) {
        Fixture f;
        f.host.SetSensitivity(c.sensitivity);
        f.host.SetMaxFrames(c.maxFrames);
        const DecodedParameters decoded = DecodeParameters(&f.host);
        EXPECT_NEAR(decoded.threshold, c.threshold, 5e-7f) << c.sensitivity;
        EXPECT_EQ(decoded.limit, c.limit) << c.maxFrames;
    }
    const DecodedParameters noHost = DecodeParameters(nullptr);
    EXPECT_NEAR(noHost.threshold, 0.1f, 1e-7f);
    EXPECT_EQ(noHost.limit, 1);
    EXPECT_FALSE(noHost.test);
}

TEST(EffectParameters, TestModeIsTheLowByteOnly)
{
    struct Case {
        uint8_t bytes[8];
        bool on;
    };
    const Case cases[] = {{{0, 0, 0, 0, 0, 0, 0, 0}, false}, {{1, 0, 0, 0, 0, 0, 0, 0}, true},
                          {{0x80, 0, 0, 0, 0, 0, 0, 0}, true}, {{0, 1, 1, 1, 1, 1, 1, 1}, false}};
    for (const Case& c : cases) {
        Fixture f;
        EffectParam value = {};
        std::memcpy(value.value.bytes, c.bytes, 8);
        value.dwType = eptBool;
        f.host.SetParam(2, value);
        EXPECT_EQ(DecodeParameters(&f.host).test, c.on) << int(c.bytes[0]) << "," << int(c.bytes[1]);
    }
}

} // namespace

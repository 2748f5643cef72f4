// The GL helpers on a real context of Mesa's software renderer: projection, blend state, render
// targets, the uniform scheme read back from a real program, quads drawn and read back, and the
// counts of what was made.
#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "../gpu/GPUHelper.h"
#include "GLTestHost.h"

namespace {

const char kVertexShader[] = "#version 120\n"
                             "void main() { gl_Position = ftransform(); gl_TexCoord[0] = gl_MultiTexCoord0; }\n";

// Declares every uniform of the scheme for units 0 and 8 and uses them all, so that none is
// optimised away.
std::string FragmentShader()
{
    const char* fields[] = {"vScale", "vShift", "vRT2TEX_Scale", "vRT2TEX_Shift", "vRT2TEXi_Scale",
                            "vRT2TEXi_Shift", "vTEX2NORM_Scale", "vTEX2NORM_Shift", "vTEX2TEXi_Scale",
                            "vTEX2TEXi_Shift", "vTEXi2NORM_Scale", "vTEXi2NORM_Shift", "vScaleTEXi", "vShiftTEXi",
                            "vNORM2TEXi_Scale", "texelSize", "roiLeftTop", "roiWH"};
    std::string source = "#version 120\nstruct TexInfo {";
    std::string sum = "vRTSize + vRT2NORM_Scale + vRT2NORM_Shift";
    for (const char* field : fields) {
        source += " vec2 " + std::string(field) + ";";
        sum += std::string(" + Texture0.") + field + " + Texture8." + field;
    }
    return source + " };\nuniform TexInfo Texture0; uniform TexInfo Texture8;\n"
                    "uniform sampler2D Texture0_texture; uniform vec2 vRTSize, vRT2NORM_Scale, vRT2NORM_Shift;\n"
                    "void main() { vec2 s = " + sum + ";\n"
                    " gl_FragColor = texture2D(Texture0_texture, gl_TexCoord[0].st) + vec4(s, 0.0, 0.0); }\n";
}

class GPUHelperTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_context.Made()) << "no GL context from Mesa's software renderer";
        m_helper.SetParams(&m_host, &m_context);
    }

    // A texture of `width` x `height` whose texel (x, y) is 0xFF000000 | y << 8 | x.
    TextureParams MakeTexture(int width, int height)
    {
        std::vector<uint32_t> texels(static_cast<size_t>(width) * height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                texels[static_cast<size_t>(y) * width + x] = 0xFF000000u | static_cast<uint32_t>(y << 8 | x);
        TextureParams texture;
        bool made = false;
        EXPECT_TRUE(m_helper.CreateNamedTexture(texture, "t", width, height, pfVideoSample, texels.data(), 0, &made));
        return texture;
    }
    bool MakeShader(GLShaderProgram& program, const std::string& fragment)
    {
        return m_helper.CreateShader({kVertexShader, -1, 0}, {fragment.c_str(), -1, 1}, program);
    }
    std::pair<float, float> Uniform(const char* name)
    {
        GLint program = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        float value[2] = {-99, -99};
        glGetUniformfv(static_cast<GLuint>(program), glGetUniformLocation(static_cast<GLuint>(program), name), value);
        return {value[0], value[1]};
    }

    GLTestHost::Context m_context;
    GLTestHost::Host m_host;
    GPUHelper m_helper;
};

TEST_F(GPUHelperTest, KeepsTheContextsDescriptionAndSetsAnOrthographicProjection)
{
    EXPECT_EQ(std::memcmp(m_helper.ContextDescription(), m_context.GetDescription(), kGLContextDescriptionSize), 0);
    m_helper.ConfigProjectionMatrix(640.0f, 360.0f);
    float matrix[16];
    glGetFloatv(GL_PROJECTION_MATRIX, matrix);
    const float expected[16] = {2.0f / 640, 0, 0, 0, 0, 2.0f / 360, 0, 0, 0, 0, -0.2f, 0, 0, 0, -1.4f, 1};
    for (int index = 0; index < 16; ++index)
        EXPECT_NEAR(matrix[index], expected[index], 1e-6) << index;
}

TEST_F(GPUHelperTest, BlenderMapsEveryValueAndRestoresTheSavedState)
{
    glBlendColor(0.25f, 0.5f, 0.75f, 1.0f);
    glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MAX);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_DST_COLOR, GL_CONSTANT_ALPHA, GL_ONE_MINUS_DST_ALPHA);
    m_helper.SetParams(&m_host, &m_context);   // saves this state
    GPUHelper::GLBlender& blender = m_helper.Blender();
    const GLenum equations[] = {GL_FUNC_ADD, GL_FUNC_SUBTRACT, GL_MIN, GL_MAX, GL_FUNC_ADD, GL_FUNC_ADD};
    const int equationValues[] = {0, 1, 2, 3, 4, -1};
    for (int row = 0; row < 6; ++row) {
        blender.Enable(GPUHelper::BlendEquation(equationValues[row]), GPUHelper::BlendEquation(equationValues[5 - row]));
        GLint rgb = 0, alpha = 0;
        glGetIntegerv(GL_BLEND_EQUATION_RGB, &rgb);
        glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &alpha);
        EXPECT_EQ(static_cast<GLenum>(rgb), equations[row]) << row;
        EXPECT_EQ(static_cast<GLenum>(alpha), equations[5 - row]) << row;
    }
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    const GLenum factors[] = {GL_ZERO, GL_ONE, GL_SRC_COLOR, GL_ONE_MINUS_SRC_COLOR, GL_DST_COLOR,
                              GL_ONE_MINUS_DST_COLOR, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_DST_ALPHA,
                              GL_ONE_MINUS_DST_ALPHA, GL_CONSTANT_COLOR, GL_ONE_MINUS_CONSTANT_COLOR,
                              GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA, GL_ZERO, GL_ZERO};
    for (int value = 0; value < 16; ++value) {
        const int factor = value == 15 ? -1 : value;
        blender.BlendFuncSeparate(GPUHelper::BlendFactor(factor), GPUHelper::BlendFactor(1),
                                  GPUHelper::BlendFactor(factor), GPUHelper::BlendFactor(factor));
        GLint srcRGB, dstRGB, srcAlpha, dstAlpha;
        glGetIntegerv(GL_BLEND_SRC_RGB, &srcRGB);
        glGetIntegerv(GL_BLEND_DST_RGB, &dstRGB);
        glGetIntegerv(GL_BLEND_SRC_ALPHA, &srcAlpha);
        glGetIntegerv(GL_BLEND_DST_ALPHA, &dstAlpha);
        EXPECT_EQ(static_cast<GLenum>(srcRGB), factors[value]) << factor;
        EXPECT_EQ(static_cast<GLenum>(dstRGB), GLenum(GL_ONE)) << factor;
        EXPECT_EQ(static_cast<GLenum>(srcAlpha), factors[value]) << factor;
        EXPECT_EQ(static_cast<GLenum>(dstAlpha), factors[value]) << factor;
    }
    glBlendColor(0, 0, 0, 0);
    m_helper.SetParams(&m_host, nullptr);   // restores
    float colour[4];
    GLint state[6];
    glGetFloatv(GL_BLEND_COLOR, colour);
    const GLenum names[] = {GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA, GL_BLEND_SRC_RGB,
                            GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA};
    for (int index = 0; index < 6; ++index)
        glGetIntegerv(names[index], &state[index]);
    EXPECT_EQ(std::vector<float>(colour, colour + 4), std::vector<float>({0.25f, 0.5f, 0.75f, 1.0f}));
    EXPECT_EQ(std::vector<GLint>(state, state + 6),
              std::vector<GLint>({GL_FUNC_REVERSE_SUBTRACT, GL_MAX, GL_SRC_ALPHA, GL_DST_COLOR, GL_CONSTANT_ALPHA,
                                  GL_ONE_MINUS_DST_ALPHA}));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
}

TEST_F(GPUHelperTest, RenderTargetHalvesTheSampleCountUntilTheHostTakesIt)
{
    const std::pair<int, int> firstCounts[] = {{0, 0}, {4, 4}, {7, 7}, {8, 4}, {16, 4}, {32, 4}, {15, 7}};
    for (const auto& [most, first] : firstCounts)
        EXPECT_EQ(GPUHelper::FirstSampleCount(most), first) << most;
    GLint maxSamples = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
    const int first = GPUHelper::FirstSampleCount(maxSamples);
    TextureParams target = MakeTexture(24, 12);
    struct Case {
        int refuseAbove;
        bool multisample;
        std::vector<int> requests;
        bool taken;
    };
    const Case cases[] = {
        {64, false, {0}, true},
        {64, true, {first}, true},
        {first / 2, true, {first, first / 2}, true},
        {0, true, {}, true},    // down to 0, which is taken
        {-1, true, {}, false},  // refused all the way down
    };
    for (const Case& c : cases) {
        std::vector<int> expected = c.requests;
        if (expected.empty())
            for (int samples = first;; samples /= 2) {
                expected.push_back(samples);
                if (samples == 0)
                    break;
            }
        m_host.SampleRequests.clear();
        m_host.RefuseSamplesAbove = c.refuseAbove;
        EXPECT_EQ(m_helper.SetRenderTarget(&target, c.multisample, false, false), c.taken);
        EXPECT_EQ(m_host.SampleRequests, expected) << c.refuseAbove;
        EXPECT_EQ(m_helper.IsMultisampled(), c.multisample);
        EXPECT_EQ(m_helper.RenderTargetWidth(), c.taken ? 24 : m_helper.RenderTargetWidth());
    }
    m_host.RefuseSamplesAbove = 64;
    EXPECT_TRUE(m_helper.SetRenderTarget(nullptr, true, false, false));
    EXPECT_EQ(m_helper.RenderTargetWidth(), 0);
    EXPECT_FALSE(m_helper.IsMultisampled());
    m_helper.FreeTexture(target);
}

// The Part's arithmetic per axis: T allocated, A image, O offset, R render target, r0..r1.
std::vector<float> ExpectedTexInf(double T, double A, double O, double R, double r0, double r1)
{
    const double l = O + A * r0 + 0.5, w = A * (r1 - r0) - 1, S = w + 1;
    const double scale = w / T, shift = l / T;
    const double texi2normScale = T > 1.5 ? 1 / w : 0, texi2normShift = T > 1.5 ? 0 : 0.5;
    const double values[] = {scale, shift, R > 1.5 ? R / (R - 1) * w / S : 0, R > 1.5 ? (0.5 / S) * (1 - w / (R - 1)) : 0.5,
                             R > 1.5 ? R / (R - 1) * w : 0, R > 1.5 ? -0.5 * w / (R - 1) : 0, T > 1.5 ? S / w : 0,
                             T > 1.5 ? -0.5 / w : 0.5, S, -0.5, texi2normScale, texi2normShift,
                             scale * texi2normScale, shift + scale * texi2normShift, w, 1 / w, shift, scale};
    return std::vector<float>(values, values + 18);
}

TEST_F(GPUHelperTest, BindAndSetTexInfFillTheUniformScheme)
{
    GLShaderProgram program;
    ASSERT_TRUE(MakeShader(program, FragmentShader()));
    const char* suffixes[] = {"vScale", "vShift", "vRT2TEX_Scale", "vRT2TEX_Shift", "vRT2TEXi_Scale",
                              "vRT2TEXi_Shift", "vTEX2NORM_Scale", "vTEX2NORM_Shift", "vTEX2TEXi_Scale",
                              "vTEX2TEXi_Shift", "vTEXi2NORM_Scale", "vTEXi2NORM_Shift", "vScaleTEXi",
                              "vShiftTEXi", "vNORM2TEXi_Scale", "texelSize", "roiLeftTop", "roiWH"};
    TextureParams texture = MakeTexture(64, 1);   // a height of one texel takes the T <= 1.5 branch
    texture.nImageWidth = 50;
    texture.nLeft = 3;
    const GPUStuff::TextureRect rect = {0.1f, 0.0f, 0.9f, 1.0f};
    // A render target one pixel high takes the size-1 and R <= 1.5 branches.
    ASSERT_TRUE(program.Bind(100, 1));
    EXPECT_EQ(Uniform("vRTSize"), std::make_pair(100.0f, 1.0f));
    EXPECT_EQ(Uniform("vRT2NORM_Scale"), std::make_pair(100.0f / 99.0f, 0.0f));
    EXPECT_EQ(Uniform("vRT2NORM_Shift"), std::make_pair(-0.5f / 99.0f, 0.5f));
    program.SetTexInf(0, texture, rect);
    const std::vector<float> x = ExpectedTexInf(64, 50, 3, 100, 0.1f, 0.9f), y = ExpectedTexInf(1, 1, 0, 1, 0, 1);
    for (int field = 0; field < 18; ++field) {
        const auto value = Uniform((std::string("Texture0.") + suffixes[field]).c_str());
        EXPECT_NEAR(value.first, x[field], 1e-5 * std::max(1.0f, std::abs(x[field]))) << suffixes[field];
        if (std::isfinite(y[field])) {
            EXPECT_NEAR(value.second, y[field], 1e-5 * std::max(1.0f, std::abs(y[field]))) << suffixes[field];
        }
    }
    // A repeated unit and units above 7 are ignored until the next Bind.
    TextureParams other = texture;
    other.nLeft = 9;
    program.SetTexInf(0, other, rect);
    program.SetTexInf(8, other, rect);
    EXPECT_NEAR(Uniform("Texture0.vShift").first, x[1], 1e-6);
    EXPECT_EQ(Uniform("Texture8.vScale"), std::make_pair(0.0f, 0.0f));
    ASSERT_TRUE(program.Bind(100, 1));
    program.SetTexInf(0, other, rect);
    EXPECT_NEAR(Uniform("Texture0.vShift").first, (9 + 50 * 0.1f + 0.5f) / 64, 1e-6);
    m_helper.FreeShader(program);
    m_helper.FreeTexture(texture);

    GLShaderProgram untracked(false);   // passes values through but fills no scheme
    ASSERT_TRUE(MakeShader(untracked, FragmentShader()));
    ASSERT_TRUE(untracked.Bind(10, 10));
    untracked.SetTexInf(0, texture, rect);
    EXPECT_EQ(Uniform("vRTSize"), std::make_pair(0.0f, 0.0f));
    EXPECT_EQ(Uniform("Texture0.vScale"), std::make_pair(0.0f, 0.0f));
    untracked.SetFloat2("vRTSize", 3, 4);
    EXPECT_EQ(Uniform("vRTSize"), std::make_pair(3.0f, 4.0f));
    m_helper.FreeShader(untracked);
}

TEST_F(GPUHelperTest, QuadsCoverTheirRectangleFlippedOrNot)
{
    const int width = 16, height = 8;
    TextureParams target = MakeTexture(width, height);
    TextureParams image = MakeTexture(4, 2);
    ASSERT_TRUE(m_helper.SetRenderTarget(&target, false, false, false));
    m_helper.ConfigProjectionMatrix(width, height);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, image.pTexture->Name());
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    GPUStuff::TextureRect rect = {0.25f, 0.5f, 0.75f, 1.0f};
    const GPUStuff::TextureRect polygon = m_helper.GetPolygonRect(false, &rect);
    EXPECT_EQ(std::vector<float>({polygon.left, polygon.top, polygon.right, polygon.bottom}),
              std::vector<float>({-4.0f, 0.0f, 4.0f, 4.0f}));
    for (bool flipped : {false, true}) {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        m_helper.BuildQuad(image, flipped, &rect);
        const std::vector<uint32_t> pixels = GLTestHost::ReadPixels(width, height);
        // Image rows run up the target from the rectangle's first row; flipped, the same area
        // shows them running down.
        for (int row = 0; row < height; ++row)
            for (int column = 0; column < width; ++column) {
                const bool inside = column >= 4 && column < 12 && row >= 4;
                const int texelRow = (flipped ? 7 - row : row - 4) / 2;
                const uint32_t expected = inside ? 0xFF000000u | static_cast<uint32_t>(texelRow << 8 | (column - 4) / 2) : 0;
                ASSERT_EQ(pixels[static_cast<size_t>(row) * width + column], expected)
                    << "flipped " << flipped << " at " << column << "," << row;
            }
    }
    glDisable(GL_TEXTURE_2D);
    m_helper.FreeTexture(image);
    m_helper.FreeTexture(target);
}

TEST_F(GPUHelperTest, CountsOfTexturesAndShadersReturnToZero)
{
    TextureParams a = MakeTexture(2, 2), b = MakeTexture(3, 1);
    GLShaderProgram good, broken;
    EXPECT_TRUE(MakeShader(good, FragmentShader()));
    EXPECT_FALSE(MakeShader(broken, "#version 120\nvoid main() { not glsl }\n"));
    EXPECT_EQ(m_helper.LiveTextures(), 2);
    EXPECT_EQ(m_helper.LiveShaders(), 1);
    EXPECT_EQ(m_host.References(), 1);   // the tracked shader holds the host
    EXPECT_TRUE(m_helper.FreeTexture(a));
    EXPECT_TRUE(m_helper.FreeTexture(b));
    EXPECT_FALSE(m_helper.FreeTexture(b));   // already gone: the host hears of the failure
    m_helper.FreeShader(good);
    EXPECT_EQ(m_helper.LiveTextures(), 0);
    EXPECT_EQ(m_helper.LiveShaders(), 0);
    EXPECT_EQ(m_host.References(), 0);
    EXPECT_EQ(m_host.FreeReports, std::vector<bool>({true, true, false}));
}

} // namespace

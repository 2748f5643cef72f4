#pragma once
#include <string>
#include <vector>

#include "../include/GLContext.h"
#include "../include/VideoHostGL.h"
#include "TextureRect.h"

// One shader of the host and the fixed scheme of uniforms that tell it where each input texture
// lies: per unit k the record "Texture<k>" with scales and shifts between render-target
// pixels, texture coordinates and texel steps, and the sampler "Texture<k>_texture".
class GLShaderProgram {
public:
    static const unsigned kServedUnits = 8;

    explicit GLShaderProgram(bool trackUniforms = true);
    ~GLShaderProgram();
    GLShaderProgram(const GLShaderProgram&) = delete;
    GLShaderProgram& operator=(const GLShaderProgram&) = delete;

    // Takes the shader when it is usable, with a reference on the host; true when it did.
    bool Init(IVideoHostGL* host, IGLContext* context, IGLShader* shader);
    // Frees the shader and releases the host; true when the shader's object reported success.
    bool Free();

    int FindUniform(const char* name) const;
    bool CheckUniform(const char* name);
    void SetFloat2(const char* name, float x, float y);
    void SetTex2D(const char* name, const TextureParams& texture);
    bool Bind(int width, int height);
    void SetTexInf(unsigned int unit, const TextureParams& texture, GPUStuff::TextureRect rect);

    bool IsTracked() const { return m_bTrackUniforms; }
    IGLShader* Shader() const { return m_pShader; }

private:
    IGLContext* m_pContext = nullptr;
    IVideoHostGL* m_pHost = nullptr;
    IGLShader* m_pShader = nullptr;
    bool m_bTrackUniforms;
    int m_nWidth = 1;
    int m_nHeight = 1;
    std::vector<std::string> m_UniformNames;
    std::vector<bool> m_UniformSet;
    bool m_UnitDone[kServedUnits] = {};
};

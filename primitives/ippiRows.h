#pragma once
// Row kernels of the pixel members, one set for each variant. A kernel does one row of n pixels
// (for the copies, n bytes); the members' checks and row walking live once, in the plain files,
// and take the variant's kernel. A faster kernel leaves what its vectors don't cover to the plain
// one, so every edge is done by the reference code.
#include <cstddef>
#include <cstdint>

namespace PlainRows {

void CopyBytes(const uint8_t* s, uint8_t* d, size_t bytes);
void CopyC4C1_8u(const uint8_t* s, uint8_t* d, size_t n);
void CopyC4C1_32f(const float* s, float* d, size_t n);
void CopyC1C4_8u(const uint8_t* s, uint8_t* d, size_t n);
void CopyC1C4_32f(const float* s, float* d, size_t n);
void CopyC4CR_8u(const uint8_t* s, uint8_t* d, size_t n);
void CopyC4CR_32f(const float* s, float* d, size_t n);

void Set_8u_C1(uint8_t value, uint8_t* d, size_t n);
void Set_32f_C1(float value, float* d, size_t n);
void Set_8u_C4(const uint8_t value[4], uint8_t* d, size_t n);
void Set_32f_C4(const float value[4], float* d, size_t n);
void Set_8u_C4C(uint8_t value, uint8_t* d, size_t n);
void Set_32f_C4C(float value, float* d, size_t n);

void SwapChannels(uint8_t* sd, size_t n, const int order[4]);

void AlphaComp(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, int alphaType);
void AlphaPremul(const uint8_t* s, uint8_t* d, size_t n);

void AddC(const float* s, float* d, size_t n, const float value[3]);
void MulC(const float* s, float* d, size_t n, const float value[3]);
void ColorTwist(const float* s, float* d, size_t n, const float twist[3][4]);
void Sqr(float* sd, size_t n);
bool Sqrt(float* sd, size_t n);   // true when a negative sample was met
void Threshold(float* sd, size_t n, const float threshold[4], const float value[4]);

// n pixels from a pair's start. An odd last pixel of YCbCr422ToBGR borrows the Cr of the pair
// before it, which lies before s when n is 1: only a row's tail may be that short.
void YCbCr422ToBGR(const uint8_t* s, uint8_t* d, size_t n, uint8_t alphaValue);
void BGRToYCbCr422(const uint8_t* s, uint8_t* d, size_t n);

} // namespace PlainRows

// SSE4.1; only for a processor that has it.
namespace Sse41Rows {

void CopyBytes(const uint8_t* s, uint8_t* d, size_t bytes);
void CopyC4C1_8u(const uint8_t* s, uint8_t* d, size_t n);
void CopyC4C1_32f(const float* s, float* d, size_t n);

void Set_8u_C1(uint8_t value, uint8_t* d, size_t n);
void Set_32f_C1(float value, float* d, size_t n);
void Set_8u_C4(const uint8_t value[4], uint8_t* d, size_t n);
void Set_32f_C4(const float value[4], float* d, size_t n);

void SwapChannels(uint8_t* sd, size_t n, const int order[4]);

void AlphaComp(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, int alphaType);
void AlphaPremul(const uint8_t* s, uint8_t* d, size_t n);

void AddC(const float* s, float* d, size_t n, const float value[3]);
void MulC(const float* s, float* d, size_t n, const float value[3]);
void ColorTwist(const float* s, float* d, size_t n, const float twist[3][4]);
void Sqr(float* sd, size_t n);
bool Sqrt(float* sd, size_t n);
void Threshold(float* sd, size_t n, const float threshold[4], const float value[4]);

void YCbCr422ToBGR(const uint8_t* s, uint8_t* d, size_t n, uint8_t alphaValue);
void BGRToYCbCr422(const uint8_t* s, uint8_t* d, size_t n);

} // namespace Sse41Rows

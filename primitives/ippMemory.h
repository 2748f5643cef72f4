#pragma once
#include "ippdefs.h"

// Blocks aligned to 32 bytes; the raw address is kept in the 8 bytes before the block.
void* ippMalloc(int length);
void ippFree(void* p);

unsigned char* ippsMalloc_8u(int length);
void ippsFree(void* p);

// Pictures whose rows start on 32-byte boundaries; the step is the row rounded up to 32.
unsigned char* ippiMalloc_8u_C1(int width, int height, int* pStep);
unsigned char* ippiMalloc_8u_C2(int width, int height, int* pStep);
unsigned char* ippiMalloc_8u_C3(int width, int height, int* pStep);
unsigned char* ippiMalloc_8u_C4(int width, int height, int* pStep);
float* ippiMalloc_32f_C4(int width, int height, int* pStep);
void ippiFree(void* p);

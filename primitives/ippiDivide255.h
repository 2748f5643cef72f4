#pragma once
// The library's division by 255 of a product t of two bytes, rounded: m(t) = (t + (t >> 8) + 1) >> 8.
// It gives m(255 x) = x for every byte x.
inline int Divide255(int t)
{
    return (t + (t >> 8) + 1) >> 8;
}

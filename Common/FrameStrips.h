#pragma once
#include <algorithm>

#include "Frame.h"

// Work over a frame in strips of rows small enough to stay in the processor's nearer caches, so
// that several passes over one strip (a measure and copies, say) read it from memory once.

// How many rows of `frame` make one strip: at least one.
int RowsPerStrip(const CFrame& frame);

// Calls visit(firstRow, rowCount) for each strip of `frame`, from row 0 on, covering every row
// once.
template <class Visit>
void ForEachStrip(const CFrame& frame, Visit visit)
{
    const int rowsPerStrip = RowsPerStrip(frame);
    for (int firstRow = 0; firstRow < frame.m_nHeight;) {
        const int rowCount = std::min(rowsPerStrip, frame.m_nHeight - firstRow);
        visit(firstRow, rowCount);
        firstRow += rowCount;
    }
}

// Processors::CCopy over the rows firstRow to firstRow + rowCount - 1 only: strip after strip,
// the same pixels as one CCopy of the whole frames. Rows past the end of `dst` are left out.
bool CopyStrip(CFrame& src, CFrame& dst, int firstRow, int rowCount);

#pragma once
#include <memory>
#include <mutex>
#include <vector>

#include "AvSupport.h"
#include "Picture.h"

namespace Deglare {

// Moves pictures between the decoder's and encoder's formats and the effect's 8-bit BGRA, with
// the matrix and range that the frames carry, so a marked picture goes back as it came. Any
// number of threads may convert at once: each conversion borrows a scaler of its own.
class ColourConverter {
public:
    ColourConverter();
    ColourConverter(const ColourConverter&) = delete;
    ColourConverter& operator=(const ColourConverter&) = delete;
    ~ColourConverter();

    // A BGRA picture for conversions, from memory that pictures of the run give back.
    std::unique_ptr<Picture> NewPicture(int width, int height);
    // Makes `count` pictures of that size ready for NewPicture, their memory touched.
    void WarmPictures(int width, int height, int count);

    // `frame` into `picture`, scaled to the picture's size if the two differ.
    void ToBgra(const AVFrame* frame, Picture& picture);
    // `picture` into `frame`, whose format, size and colour properties are already set and
    // whose buffers are allocated.
    void FromBgra(const Picture& picture, AVFrame* frame);
    // `source` into `destination` (format, size and colour properties set, buffers allocated).
    void Convert(const AVFrame* source, AVFrame* destination);

private:
    struct Setup {
        int sourceWidth, sourceHeight, sourceFormat;
        int destinationWidth, destinationHeight, destinationFormat;
        int sourceMatrix, sourceFullRange, destinationMatrix, destinationFullRange;
        bool operator==(const Setup& other) const;
    };
    struct Scaler {
        Setup setup;
        SwsContext* context;
    };

    SwsContext* Borrow(const Setup& setup);
    void Return(const Setup& setup, SwsContext* context);
    void Scale(const Setup& setup, const uint8_t* const* sourcePlanes, const int* sourceSpans,
               uint8_t* const* destinationPlanes, const int* destinationSpans);

    std::mutex m_mutex;
    std::vector<Scaler> m_idle;
    std::shared_ptr<PicturePool> m_pictures;
};

} // namespace Deglare

// image.hpp - a stream as bytes, in a file or in memory.
//
// All numbers are little-endian, without padding. A checksum is the CRC-32 of IEEE 802.3, as zlib has it.
//
//   header         36 bytes, with a checksum of its own: nothing is believed before it has been seen
//   state          the object from byte 16 on
//   chunks         each a head of 24 bytes and its data
//
// Loading reads no more than an intact header says, and takes no more memory than the generator's state and
// its chunks may have. The state has to pass the generator's validation.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

struct image_header {
    unsigned char magic[8];
    uint32_t version;
    int32_t id;     // of the generator, as in the stream
    uint32_t bytes; // of the whole image
    uint32_t state_bytes;
    uint32_t chunks;
    uint32_t body_crc;
    uint32_t header_crc; // of all before it
};
static_assert(sizeof(image_header) == 36);

// Bytes of the image, or why there is none: no such generator, abstract, too many or too large chunks.
int image_size(const stream &s);
void write_image(const stream &s, unsigned char *image); // of a stream that has a size

// Whether the header begins an image of a stream of this library.
int check_header(const image_header &header);
// Makes the stream; body: what follows a good header. *out is null unless the result is ok.
int read_image(const image_header &header, const unsigned char *body, stream **out);

} // namespace vox::rng

// image.cpp - see image.hpp.
#include "rng/image.hpp"

#include <string.h>

#include "rng/chunks.hpp"
#include "rng/objects.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;

// The first byte is no text, the line ends do not survive a transfer as text.
constexpr unsigned char magic[8] = {0x9B, 'R', 'S', 'K', '\r', '\n', 0x1A, '\n'};
constexpr uint32_t version = 1;

// What a stream may carry beside its state.
constexpr uint32_t most_chunks = 16, most_chunk_bytes = 1 << 20;

struct chunk_head {
    uint32_t id, bytes;
    chunk_key key;
};
static_assert(sizeof(chunk_head) == 24);

struct crc_table {
    uint32_t of[16];
    constexpr crc_table() : of{} {
        for (uint32_t i = 0; i < 16; ++i) {
            of[i] = i;
            for (int bit = 0; bit < 4; ++bit)
                of[i] = of[i] >> 1 ^ (of[i] & 1 ? 0xEDB88320 : 0);
        }
    }
};
constexpr crc_table by_nibble;

uint32_t crc(const void *data, size_t bytes) {
    const auto *p = static_cast<const unsigned char *>(data);
    uint32_t c = 0xFFFFFFFF;
    for (size_t i = 0; i < bytes; ++i) {
        c ^= p[i];
        c = c >> 4 ^ by_nibble.of[c & 15];
        c = c >> 4 ^ by_nibble.of[c & 15];
    }
    return ~c;
}

uint32_t header_crc(const image_header &h) { return crc(&h, offsetof(image_header, header_crc)); }

// The row of a generator whose streams can be saved.
int row_of(int id, brng_properties *row) {
    if (is_abstract(id))
        return RSK_ERROR_NOT_SAVABLE;
    if (const int status = rskGetBrngProperties(id, row))
        return status;
    const size_t most = INT32_MAX - sizeof(image_header) - most_chunk_bytes;
    return state_bytes(*row) <= most ? RSK_STATUS_OK : RSK_ERROR_NOT_SAVABLE;
}

// Shared data of a file are shared with streams that hold the same under this key. Nobody else gets them:
// they might be other than what the key stands for.
int add_shared(stream &s, const chunk_head &head, const unsigned char *bytes) {
    stream probe{};
    int status = share_chunk(probe, head.id, head.key, head.bytes);
    const bool same = status == ok && memcmp(probe.chunks->data, bytes, head.bytes) == 0;
    if (same)
        status = share_chunk(s, head.id, head.key, head.bytes);
    delete_chunks(probe);
    return status == ok && !same ? key_not_found : status;
}

int add(stream &s, const chunk_head &head, const unsigned char *bytes) {
    chunk_key key{};
    if (head.key) {
        if (const int status = add_shared(s, head, bytes); status != key_not_found)
            return status;
        key = fresh_key(head.key.second);
    }
    void *data = new_chunk_data(head.bytes);
    if (!data)
        return RSK_ERROR_NO_MEMORY;
    memcpy(data, bytes, head.bytes);
    return add_chunk(s, head.id, key, data, head.bytes);
}

int add_all(stream &s, uint32_t count, const unsigned char *from, const unsigned char *end) {
    for (; count > 0; --count) {
        chunk_head head;
        if (size_t(end - from) < sizeof head)
            return bad_state;
        memcpy(&head, from, sizeof head);
        from += sizeof head;
        if (size_t(end - from) < head.bytes)
            return bad_state;
        if (const int status = add(s, head, from))
            return status;
        from += head.bytes;
    }
    return from == end ? ok : bad_state;
}

} // namespace

int vox::rng::image_size(const stream &s) {
    brng_properties row;
    if (const int status = row_of(s.id, &row))
        return status;
    uint64_t count = 0, bytes = 0;
    for (const chunk *c = s.chunks; c; c = c->next, ++count)
        bytes += sizeof(chunk_head) + c->bytes;
    if (count > most_chunks || bytes > most_chunk_bytes)
        return RSK_ERROR_NOT_SAVABLE;
    return int(sizeof(image_header) + state_bytes(row) + bytes);
}

void vox::rng::write_image(const stream &s, unsigned char *image) {
    brng_properties row;
    rskGetBrngProperties(s.id, &row);
    unsigned char *const body = image + sizeof(image_header);
    memcpy(body, &s + 1, state_bytes(row));
    unsigned char *to = body + state_bytes(row);
    image_header header{{}, version, s.id, 0, uint32_t(state_bytes(row)), 0, 0, 0};
    memcpy(header.magic, magic, sizeof magic);
    for (const chunk *c = s.chunks; c; c = c->next, ++header.chunks) {
        const chunk_head head{c->id, c->bytes, c->key};
        memcpy(to, &head, sizeof head);
        to += sizeof head;
        memcpy(to, c->data, c->bytes);
        to += c->bytes;
    }
    header.bytes = uint32_t(to - image);
    header.body_crc = crc(body, size_t(to - body));
    header.header_crc = header_crc(header);
    memcpy(image, &header, sizeof header);
}

int vox::rng::check_header(const image_header &header) {
    if (memcmp(header.magic, magic, sizeof magic) != 0)
        return RSK_ERROR_FOREIGN;
    if (header.version != version)
        return RSK_ERROR_VERSION;
    if (header.header_crc != header_crc(header))
        return RSK_ERROR_CHECKSUM;
    brng_properties row;
    if (row_of(header.id, &row) != RSK_STATUS_OK || header.state_bytes != state_bytes(row))
        return bad_state;
    const size_t least = sizeof header + state_bytes(row);
    if (header.bytes < least || header.bytes - least > most_chunk_bytes ||
        header.chunks > most_chunks)
        return bad_state;
    return RSK_STATUS_OK;
}

int vox::rng::read_image(const image_header &header, const unsigned char *body, stream **out) {
    *out = nullptr;
    const size_t bytes = header.bytes - sizeof header;
    if (header.body_crc != crc(body, bytes))
        return RSK_ERROR_CHECKSUM;
    brng_properties row;
    rskGetBrngProperties(header.id, &row);
    stream *s = new_object(header.id, row);
    if (!s)
        return RSK_ERROR_NO_MEMORY;
    memcpy(s + 1, body, header.state_bytes);
    int status = add_all(*s, header.chunks, body + header.state_bytes, body + bytes);
    if (status == ok)
        status = validate_state(s, row);
    if (status == ok)
        *out = s;
    else
        delete_object(s);
    return status;
}

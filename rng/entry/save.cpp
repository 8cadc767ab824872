// save.cpp - streams to files and back, to memory and back.
#include <stdio.h>
#include <string.h>

#include "rng/entry/valid.hpp"
#include "rng/image.hpp"

namespace {

using namespace vox::rng;

constexpr size_t name_size = 4096; // of a file name from Fortran, with its end

// A block for the length of a scope.
class bytes {
  public:
    explicit bytes(size_t size)
        : data(static_cast<unsigned char *>(vox_serv_malloc(size ? size : 1, 64))) {}
    ~bytes() { vox_serv_free(data); }
    bytes(const bytes &) = delete;
    bytes &operator=(const bytes &) = delete;
    unsigned char *const data;
};

int write_file(const char *name, const unsigned char *image, size_t size) {
    FILE *file = fopen(name, "wbe");
    if (!file)
        return RSK_ERROR_FILE_OPEN;
    const bool written = fwrite(image, 1, size, file) == size;
    const bool closed = fclose(file) == 0;
    return written && closed ? RSK_STATUS_OK : RSK_ERROR_FILE_WRITE;
}

// A file that ends too early, or does not end, is no saved stream.
int read(FILE *file, void *to, size_t size) {
    if (fread(to, 1, size, file) == size)
        return RSK_STATUS_OK;
    return ferror(file) ? RSK_ERROR_FILE_READ : RSK_ERROR_FOREIGN;
}

int read_file(FILE *file, stream **out) {
    image_header header;
    if (const int status = read(file, &header, sizeof header))
        return status;
    if (const int status = check_header(header))
        return status;
    const size_t size = header.bytes - sizeof header;
    const bytes body(size);
    if (!body.data)
        return RSK_ERROR_NO_MEMORY;
    if (const int status = read(file, body.data, size))
        return status;
    if (fgetc(file) != EOF)
        return RSK_ERROR_FOREIGN;
    return read_image(header, body.data, out);
}

// For both ways of loading: the arguments are good or have been reported.
int check_loading(const char *function, rskStream *out, const void *source) {
    if (!out)
        return report(function, 1, RSK_ERROR_NULL_PTR);
    *out = nullptr;
    return source ? RSK_STATUS_OK : report(function, 2, RSK_ERROR_NULL_PTR);
}

int check_saving(const char *function, const stream *s, const void *target) {
    if (const int status = validity(s))
        return report(function, 1, status);
    return target ? RSK_STATUS_OK : report(function, 2, RSK_ERROR_NULL_PTR);
}

// A name from Fortran: padded with blanks, without an end. What is longer than any file's becomes empty, which
// no file is called.
struct terminated_name {
    char text[name_size];
    terminated_name(const char *name, size_t length) {
        while (length > 0 && name[length - 1] == ' ')
            --length;
        if (length >= name_size)
            length = 0;
        memcpy(text, name, length);
        text[length] = '\0';
    }
};

} // namespace

extern "C" int rskGetStreamSize(rskStream it) {
    const stream *s = object(it);
    if (const int status = validity(s))
        return report("rskGetStreamSize", 1, status);
    return image_size(*s);
}

extern "C" int rskSaveStreamM(rskStream it, void *memory) {
    const stream *s = object(it);
    if (const int status = check_saving("rskSaveStreamM", s, memory))
        return status;
    if (const int size = image_size(*s); size < 0)
        return size;
    write_image(*s, static_cast<unsigned char *>(memory));
    return RSK_STATUS_OK;
}

extern "C" int rskLoadStreamM(rskStream *out, const void *memory) {
    if (const int status = check_loading("rskLoadStreamM", out, memory))
        return status;
    image_header header;
    memcpy(&header, memory, sizeof header);
    if (const int status = check_header(header))
        return status;
    stream *s;
    const int status =
        read_image(header, static_cast<const unsigned char *>(memory) + sizeof header, &s);
    *out = handle(s);
    return status;
}

extern "C" int rskSaveStream(rskStream it, const char *name) {
    const stream *s = object(it);
    if (const int status = check_saving("rskSaveStream", s, name))
        return status;
    const int size = image_size(*s);
    if (size < 0)
        return size;
    const bytes image{size_t(size)};
    if (!image.data)
        return RSK_ERROR_NO_MEMORY;
    write_image(*s, image.data);
    return write_file(name, image.data, size_t(size));
}

extern "C" int rskLoadStream(rskStream *out, const char *name) {
    if (const int status = check_loading("rskLoadStream", out, name))
        return status;
    FILE *file = fopen(name, "rbe");
    if (!file)
        return RSK_ERROR_FILE_OPEN;
    stream *s = nullptr;
    const int status = read_file(file, &s);
    fclose(file);
    *out = handle(s);
    return status;
}

VOX_FORTRAN_FORMS_OF(rskGetStreamSize, int, rskgetstreamsize_, RSKGETSTREAMSIZE_,
                     (const rskStream *it), (*it));
VOX_FORTRAN_FORMS_OF(rskSaveStreamM, int, rsksavestreamm_, RSKSAVESTREAMM_,
                     (const rskStream *it, void *memory), (*it, memory));
VOX_FORTRAN_FORMS_OF(rskLoadStreamM, int, rskloadstreamm_, RSKLOADSTREAMM_,
                     (rskStream * out, const void *memory), (out, memory));
VOX_FORTRAN_FORMS_OF(rskSaveStream, int, rsksavestream_, RSKSAVESTREAM_,
                     (const rskStream *it, const char *name, size_t name_length),
                     (*it, terminated_name(name, name_length).text));
VOX_FORTRAN_FORMS_OF(rskLoadStream, int, rskloadstream_, RSKLOADSTREAM_,
                     (rskStream * out, const char *name, size_t name_length),
                     (out, terminated_name(name, name_length).text));

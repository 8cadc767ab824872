/* image.c - rectifies a picture: every value below the middle becomes the middle.
 *
 * The picture is read pixel after pixel, converted to a layout as primitives like it, with room for four channels a
 * pixel, rectified there by a ReLU primitive, and converted back.
 *
 * Exit status: 0; 1 if a file is bad; 2 for wrong arguments. */
#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vox/vox.h>

static const char usage[] =
    "usage: image IMAGE [OUTPUT]\n"
    "Rectifies a picture: of each value what is above the middle of the range. Files are portable\n"
    "pixmaps (PPM), IMAGE with values as text (P3) or as bytes (P6), OUTPUT as text.\n";

static int failed(const char *file, const char *why) {
    fprintf(stderr, "image: %s: %s\n", file, why);
    return 1;
}

/* The next number of a header or of a text, behind blanks and comments; -1 if there is none up to `most`. */
static long next_number(FILE *in, long most) {
    int c = getc(in);
    while (c != EOF && (isspace(c) || c == '#')) {
        while (c == '#' && (c = getc(in)) != EOF && c != '\n')
            c = '#';
        if (c != EOF)
            c = getc(in);
    }
    long n = -1;
    for (; c != EOF && isdigit(c) && n <= most; c = getc(in))
        n = 10 * (n < 0 ? 0 : n) + (c - '0');
    return n <= most ? n : -1; /* one blank behind it has been read */
}

struct picture {
    size_t width, height, count; /* count: numbers, three to a pixel */
    long most;                   /* the largest value */
    float *values;               /* less the middle */
};

/* Null, or what is wrong. */
static const char *read_picture(FILE *in, struct picture *p) {
    const int magic = getc(in) == 'P' ? getc(in) : EOF;
    if (magic != '3' && magic != '6')
        return "not a portable pixmap, which begins with P3 or P6";
    const long width = next_number(in, 1 << 15), height = next_number(in, 1 << 15);
    p->most = next_number(in, 255);
    if (width < 1 || height < 1 || p->most < 1)
        return "width and height must be from 1 to 32768, the largest value from 1 to 255";
    p->width = (size_t)width;
    p->height = (size_t)height;
    p->count = 3 * p->width * p->height;
    p->values = malloc(p->count * sizeof *p->values);
    if (!p->values)
        return "out of memory";
    for (size_t i = 0; i < p->count; ++i) {
        const long value = magic == '3' ? next_number(in, p->most) : getc(in);
        if (value < 0 || value > p->most)
            return "a value is missing or too large";
        p->values[i] = (float)value - (float)p->most / 2;
    }
    return NULL;
}

static const char *write_picture(const char *name, const struct picture *p) {
    FILE *const out = fopen(name, "w");
    if (!out)
        return strerror(errno);
    fprintf(out, "P3\n%zu %zu\n%ld\n", p->width, p->height, p->most);
    for (size_t i = 0; i < p->count; ++i)
        fprintf(out, "%.0f%c", p->values[i] + (float)p->most / 2, i % 15 == 14 ? '\n' : ' ');
    const int bad = ferror(out);
    return fclose(out) || bad ? "cannot be written" : NULL;
}

/* Pixel after pixel: x, y, channel, and one picture. */
static int pixels(dnnLayout_t *layout, const struct picture *p) {
    const size_t size[] = {p->width, p->height, 3, 1}, strides[] = {3, 3 * p->width, 1, p->count};
    return dnnLayoutCreate_F32(layout, 4, size, strides);
}

/* The same with four places to a pixel, as an internal layout. Those come from primitives, or as here from a stored
 * one: a length and the record, whose words are at fixed offsets. */
static int internal(dnnLayout_t *layout, const struct picture *p) {
    const uint32_t length = 1336, kind = 1;
    const uint64_t dimensions = 4, element_size = 4;
    const uint64_t size[] = {3, p->width, p->height, 1};
    const uint64_t strides[] = {1, 4, 4 * p->width, 4 * p->width * p->height};
    unsigned char image[1340] = {0};
    memcpy(image, &length, 4);
    memcpy(image + 4, &kind, 4);
    memcpy(image + 12, &dimensions, 8);
    memcpy(image + 20, size, sizeof size);
    memcpy(image + 276, strides, sizeof strides);
    memcpy(image + 532, &element_size, 8);
    return dnnLayoutDeserialize_F32(layout, image);
}

/* All at once: the status of the first call that fails. */
static int rectify(struct picture *p) {
    dnnLayout_t user = NULL, inner = NULL;
    dnnPrimitive_t there = NULL, relu = NULL, back = NULL;
    void *buffer = NULL, *resources[DNN_RES_COUNT] = {NULL};
    int status = pixels(&user, p);
    if (!status)
        status = internal(&inner, p);
    if (!status)
        status = dnnAllocateBuffer_F32(&buffer, inner);
    if (!status)
        status = dnnConversionCreate_F32(&there, user, inner);
    if (!status)
        status = dnnReLUCreateForward_F32(&relu, NULL, inner, 0.0f);
    if (!status)
        status = dnnConversionCreate_F32(&back, inner, user);
    if (!status)
        status = dnnConversionExecute_F32(there, p->values, buffer);
    resources[DNN_RES_SRC] = resources[DNN_RES_DST] = buffer;
    if (!status)
        status = dnnExecute_F32(relu, resources);
    if (!status)
        status = dnnConversionExecute_F32(back, buffer, p->values);
    if (!status)
        printf("internal layout: %zu bytes for %zu of values\n", dnnLayoutGetMemorySize_F32(inner),
               dnnLayoutGetMemorySize_F32(user));
    dnnDelete_F32(there); /* null is an error of theirs, and nothing happens */
    dnnDelete_F32(relu);
    dnnDelete_F32(back);
    dnnReleaseBuffer_F32(buffer);
    dnnLayoutDelete_F32(inner);
    dnnLayoutDelete_F32(user);
    return status;
}

int main(int argc, char **argv) {
    if (argc == 2 && strcmp(argv[1], "--help") == 0) {
        printf("%s", usage);
        return 0;
    }
    if (argc < 2 || argc > 3 || argv[1][0] == '-') {
        fprintf(stderr,
                "image: a picture and perhaps a name for the result are needed (image --help)\n");
        return 2;
    }
    FILE *const in = fopen(argv[1], "rb");
    if (!in)
        return failed(argv[1], strerror(errno));
    struct picture p = {0};
    const char *why = read_picture(in, &p);
    fclose(in);
    size_t below = 0;
    for (size_t i = 0; !why && i < p.count; ++i)
        below += p.values[i] < 0;
    if (!why && rectify(&p) != DNN_STATUS_OK)
        why = "cannot be converted";
    if (why) {
        free(p.values);
        return failed(argv[1], why);
    }
    printf("picture: %zu x %zu\nrectified: %zu of %zu values\n", p.width, p.height, below, p.count);
    why = argc == 3 ? write_picture(argv[2], &p) : NULL;
    free(p.values);
    return why ? failed(argv[2], why) : 0;
}

// bounded.cpp - string and memory functions that check their bounds: 0, or the constraint's code
// after a call of the registered handler. A destination is emptied before most errors are reported,
// so that a caller who ignores them reads no stale bytes.
#include <stdint.h>
#include <string.h>

#include "serv/base.hpp"
#include "serv/handler_slot.hpp"
#include "vox/service.h"

namespace {

constexpr size_t max_string = 4096;       // characters
constexpr size_t max_memory = 0x10000000; // bytes

constinit vox::handler_slot<vox_constraint_handler> string_handler;
constinit vox::handler_slot<vox_constraint_handler> memory_handler;

int violated(const vox::handler_slot<vox_constraint_handler> &slot, const char *message, int code) {
    if (const vox_constraint_handler handler = slot.get())
        handler(message, nullptr, code);
    return code;
}

int bad_string(const char *message, int code) { return violated(string_handler, message, code); }

int bad_memory(const char *message, int code) { return violated(memory_handler, message, code); }

} // namespace

extern "C" size_t vox_serv_strnlen_s(const char *s, size_t dmax) {
    if (!s)
        return 0;
    if (dmax == 0)
        return bad_string("strnlen_s: dmax is 0", VOX_CONSTRAINT_ZERO_LENGTH), 0;
    if (dmax > max_string)
        return bad_string("strnlen_s: dmax exceeds max", VOX_CONSTRAINT_TOO_LONG), 0;
    return strnlen(s, dmax);
}

extern "C" int vox_serv_strncpy_s(char *dest, size_t dmax, const char *src, size_t slen) {
    if (!dest)
        return bad_string("strncpy_s: dest is null", VOX_CONSTRAINT_NULL);
    if (dmax == 0)
        return bad_string("strncpy_s: dmax is 0", VOX_CONSTRAINT_ZERO_LENGTH);
    if (dmax > max_string)
        return bad_string("strncpy_s: dmax exceeds max", VOX_CONSTRAINT_TOO_LONG);
    dest[0] = '\0';
    if (!src)
        return bad_string("strncpy_s: src is null", VOX_CONSTRAINT_NULL);
    if (slen == 0)
        return bad_string("strncpy_s: slen is zero", VOX_CONSTRAINT_ZERO_LENGTH);
    if (slen > max_string)
        return bad_string("strncpy_s: slen exceeds max", VOX_CONSTRAINT_TOO_LONG);

    // The object that starts lower meets the other one after `gap` characters, if the copy lasts
    // that long: a write into src, or a read from dest.
    const uintptr_t to = uintptr_t(dest), from = uintptr_t(src);
    const size_t gap = to < from ? from - to : to - from;
    for (size_t i = 0; i < dmax; ++i) {
        if (i == gap && (to < from || i < slen)) {
            dest[0] = '\0';
            return bad_string("strncpy_s: overlapping objects", VOX_CONSTRAINT_OVERLAP);
        }
        dest[i] = i < slen ? src[i] : '\0';
        if (!dest[i])
            return 0;
    }
    dest[0] = '\0';
    return bad_string("strncpy_s: not enough space for src", VOX_CONSTRAINT_NO_SPACE);
}

extern "C" int vox_serv_memcpy_s(void *dest, size_t dmax, const void *src, size_t smax) {
    if (!dest)
        return bad_memory("memcpy_s: dest is NULL", VOX_CONSTRAINT_NULL);
    if (dmax == 0)
        return bad_memory("memcpy_s: dmax is 0", VOX_CONSTRAINT_ZERO_LENGTH);
    if (dmax > max_memory)
        return bad_memory("memcpy_s: dmax exceeds max", VOX_CONSTRAINT_TOO_LONG);

    const auto cleared = [&](const char *message, int code) {
        memset(dest, 0, dmax);
        return bad_memory(message, code);
    };
    const uintptr_t to = uintptr_t(dest), from = uintptr_t(src);
    if (smax == 0)
        return cleared("memcpy_s: smax is 0", VOX_CONSTRAINT_ZERO_LENGTH);
    if (smax > dmax)
        return cleared("memcpy_s: smax exceeds dmax", VOX_CONSTRAINT_TOO_LONG);
    if (src && (from <= to ? to - from < smax : from - to < dmax))
        return cleared("memcpy_s: overlap undefined", VOX_CONSTRAINT_OVERLAP);
    if (!src)
        return cleared("memcpy_s: src is NULL", VOX_CONSTRAINT_NULL);
    memcpy(dest, src, smax);
    return 0;
}

extern "C" void vox_serv_ignore_handler_s(const char *, void *, int) {}

extern "C" vox_constraint_handler
vox_serv_set_str_constraint_handler_s(vox_constraint_handler handler) {
    return string_handler.set(handler ? handler : vox_serv_ignore_handler_s);
}

extern "C" vox_constraint_handler
vox_serv_set_mem_constraint_handler_s(vox_constraint_handler handler) {
    return memory_handler.set(handler ? handler : vox_serv_ignore_handler_s);
}

// bounded_format.cpp - formatted output and input with checked arguments: the standard functions'
// results, or -1 for a null pointer or an empty buffer. A text that does not fit its buffer is cut
// and terminated; the result is then its whole length.
#include <stdio.h>

#include "serv/base.hpp"
#include "vox/service.h"

namespace {

constexpr size_t max_buffer = size_t(1) << 31; // bytes

} // namespace

extern "C" int vox_serv_vsprintf_s(char *s, size_t n, const char *format, va_list arguments) {
    if (!s || !format || n == 0)
        return -1;
    const int length = vsnprintf(s, n < max_buffer ? n : max_buffer, format, arguments);
    if (length < 0) {
        s[0] = '\0';
        return -1;
    }
    return length;
}
VOX_ALIAS(vox_serv_vsnprintf_s, vox_serv_vsprintf_s);

extern "C" int vox_serv_sprintf_s(char *s, size_t n, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = vox_serv_vsprintf_s(s, n, format, arguments);
    va_end(arguments);
    return length;
}
VOX_ALIAS(vox_serv_snprintf_s, vox_serv_sprintf_s);

extern "C" int vox_serv_vfprintf_s(FILE *file, const char *format, va_list arguments) {
    return file && format ? vfprintf(file, format, arguments) : -1;
}

extern "C" int vox_serv_vfprintf_stdout_s(const char *format, va_list arguments) {
    return vox_serv_vfprintf_s(stdout, format, arguments);
}

extern "C" int vox_serv_vfprintf_stderr_s(const char *format, va_list arguments) {
    return vox_serv_vfprintf_s(stderr, format, arguments);
}

extern "C" int vox_serv_fprintf_s(FILE *file, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = vox_serv_vfprintf_s(file, format, arguments);
    va_end(arguments);
    return length;
}

extern "C" int vox_serv_fprintf_stdout_s(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = vox_serv_vfprintf_s(stdout, format, arguments);
    va_end(arguments);
    return length;
}
VOX_ALIAS(vox_serv_printf_s, vox_serv_fprintf_stdout_s);

extern "C" int vox_serv_fprintf_stderr_s(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = vox_serv_vfprintf_s(stderr, format, arguments);
    va_end(arguments);
    return length;
}

extern "C" int vox_serv_sscanf_s(const char *s, const char *format, ...) {
    if (!s || !format)
        return -1;
    va_list arguments;
    va_start(arguments, format);
    const int fields = vsscanf(s, format, arguments);
    va_end(arguments);
    return fields;
}

extern "C" int vox_serv_fscanf_s(FILE *file, const char *format, ...) {
    if (!file || !format)
        return -1;
    va_list arguments;
    va_start(arguments, format);
    const int fields = vfscanf(file, format, arguments);
    va_end(arguments);
    return fields;
}

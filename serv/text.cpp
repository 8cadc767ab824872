// text.cpp - see text.hpp.
#include "serv/text.hpp"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

vox::text_writer::text_writer(char *buffer, size_t size) : buffer_(buffer), size_(size) {
    buffer_[0] = '\0';
}

void vox::text_writer::add(const char *format, ...) {
    const size_t room = size_ - length_;
    va_list arguments;
    va_start(arguments, format);
    const int wanted = vsnprintf(buffer_ + length_, room, format, arguments);
    va_end(arguments);
    if (wanted > 0)
        length_ += size_t(wanted) < room ? size_t(wanted) : room - 1;
}

void vox::text_writer::add_decimal(double value) {
    char digits[400]; // the largest double has 309 before the point
    const int length = snprintf(digits, sizeof digits, "%.2f", value);
    const size_t whole = strspn(digits, "-0123456789");
    if (whole == 0 || length < int(whole) + 3) // an infinity, a NaN
        add("%s", digits);
    else
        add("%.*s.%s", int(whole), digits, digits + length - 2);
}

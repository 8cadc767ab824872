// entry.cpp - see entry.hpp.
#include "serv/entry.hpp"

#include <stdarg.h>
#include <stdio.h>

vox::call_text::call_text(const char *routine) { append("%s(", routine); }

void vox::call_text::append(const char *format, ...) {
    const int room = int(sizeof text_) - length_;
    va_list arguments;
    va_start(arguments, format);
    const int written = vsnprintf(text_ + length_, size_t(room), format, arguments);
    va_end(arguments);
    if (written > 0)
        length_ += written < room ? written : room - 1;
}

void vox::call_text::add(const vox_int *integer) {
    append(first_ ? "%d" : ",%d", integer ? *integer : 0);
    first_ = false;
}

void vox::call_text::add(const char *character) {
    append(first_ ? "%c" : ",%c", character ? *character : ' ');
    first_ = false;
}

void vox::call_text::add(const void *address) {
    append(first_ ? "%p" : ",%p", address);
    first_ = false;
}

const char *vox::call_text::finish() {
    append(")");
    return text_;
}

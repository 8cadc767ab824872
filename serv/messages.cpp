// messages.cpp - prints and formats messages: numbered ones of the catalogue, and literal formats.
//
// Every message is followed by message 0, a newline, and each of the two is flushed. Printing keeps
// errno, so a routine may set it and then print. Printing formats in a buffer of its own, so
// messages of several threads interleave by whole pieces; the shared buffer is vox_serv_get_msg's.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdio_ext.h>

#include "serv/catalogue.hpp"
#include "vox/service.h"

namespace {

constexpr int buffer_size = 512;

constinit char shared_buffer[buffer_size];

class errno_keeper {
  public:
    errno_keeper() : value_(errno) {}
    ~errno_keeper() { errno = value_; }

  private:
    int value_;
};

// Closed by fclose, or its descriptor by close. A stream without a descriptor (in memory) is open.
bool is_closed(FILE *file) {
    if (!file || !__fwritable(file))
        return true;
    const int descriptor = fileno(file);
    return descriptor >= 0 && fcntl(descriptor, F_GETFD) == -1;
}

FILE *file_of(int stream) { return stream == 1 && !is_closed(stderr) ? stderr : stdout; }

void write(FILE *file, const char *text) {
    fputs(text, file);
    fflush(file);
}

void write_newline(FILE *file) { write(file, vox::message_text(vox::message_newline)); }

void print_formatted(FILE *file, const char *format, va_list arguments) {
    char text[buffer_size];
    const int length = vox_serv_vsprintf_s(text, sizeof text, format, arguments);
    if (length - 1 > buffer_size) {
        fputs("\nVOX INTERNAL ERROR: message buffer overflow.", file);
        fprintf(file, "\n       Lenght: %d   Buffer size: %d\n", length, buffer_size);
    }
    write(file, text);
    write_newline(file);
}

} // namespace

extern "C" void vox_serv_print(int stream, int number, int argument_count, ...) {
    const errno_keeper keep;
    FILE *const file = file_of(stream);
    if (number == vox::message_newline) {
        write_newline(file);
        return;
    }
    const char *const text = vox::message_text(number);
    va_list arguments;
    va_start(arguments, argument_count);
    // A caller that passes too few arguments sees the format, not what lies on the stack.
    if (argument_count < vox::count_conversions(text))
        vox_serv_file_format_print(file, "%s", 1, text);
    else
        print_formatted(file, text, arguments);
    va_end(arguments);
}

extern "C" void vox_serv_format_print(int stream, const char *format, int argument_count, ...) {
    if (argument_count < 1 || !format)
        return;
    const errno_keeper keep;
    va_list arguments;
    va_start(arguments, argument_count);
    print_formatted(file_of(stream), format, arguments);
    va_end(arguments);
}

extern "C" void vox_serv_file_format_print(FILE *file, const char *format, int argument_count,
                                           ...) {
    if (argument_count < 1 || !format || !file)
        return;
    const errno_keeper keep;
    va_list arguments;
    va_start(arguments, argument_count);
    print_formatted(file, format, arguments);
    va_end(arguments);
}

extern "C" const char *vox_serv_get_msg(int number, ...) {
    const errno_keeper keep;
    va_list arguments;
    va_start(arguments, number);
    vox_serv_vsprintf_s(shared_buffer, sizeof shared_buffer, vox::message_text(number), arguments);
    va_end(arguments);
    return shared_buffer;
}

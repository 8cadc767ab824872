// verbose_output.cpp - see verbose_output.hpp.
//
// The name is all the state there is; files are opened, and warnings printed, outside the lock.
#include "serv/verbose_output.hpp"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "serv/environment.hpp"
#include "serv/lock.hpp"

namespace {

using namespace vox;

constexpr size_t name_size = 4096; // with the terminator

constinit std::atomic<bool> name_known; // from the environment or from a call
constinit char output_name[name_size];  // empty: standard output

void warn(const char *text) { vox_serv_format_print(1, "VOX_VERBOSE WARNING: %s", 1, text); }

int open_for_appending(const char *name) {
    return open(name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
}

// What is wrong with the name; null when lines can be written to it.
const char *fault_of(const char *name, size_t length) {
    if (length == 0 || length >= name_size)
        return "incorrect output filename: too long or empty";
    const int file = open_for_appending(name);
    if (file < 0)
        return "Unable to open verbose output file.";
    close(file);
    return nullptr;
}

// name: length characters and a terminator, unless it is too long anyway. Returns whether it was
// accepted.
bool set_name(const char *name, size_t length) {
    const char *const fault = fault_of(name, length);
    {
        scoped_lock guard(lock_id::verbose_file);
        memcpy(output_name, fault ? "" : name, fault ? 1 : length + 1);
        name_known.store(true, std::memory_order_release);
    }
    if (fault)
        warn(fault);
    return !fault;
}

// Racing threads may all look at the variable; the first one to store decides, and alone warns.
void read_name() {
    if (VOX_LIKELY(name_known.load(std::memory_order_acquire)))
        return;
    const env_value<name_size - 1> value("VOX_VERBOSE_OUTPUT_FILE");
    const size_t length = value.state == env_state::too_long ? name_size : strlen(value.text);
    const char *const fault =
        value.state == env_state::missing ? nullptr : fault_of(value.text, length);
    {
        scoped_lock guard(lock_id::verbose_file);
        if (name_known.load(std::memory_order_relaxed))
            return;
        if (!fault)
            memcpy(output_name, value.text, length + 1);
        name_known.store(true, std::memory_order_release);
    }
    if (fault)
        warn(fault);
}

void write_all(int file, const char *text, size_t length) {
    while (length > 0) {
        const ssize_t written = write(file, text, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) // no room on the device: the line is lost, the call is not
            return;
        text += written;
        length -= size_t(written);
    }
}

bool append_to_file(const char *name, const char *line, size_t length) {
    const int file = open_for_appending(name);
    if (file < 0)
        return false;
    write_all(file, line, length);
    close(file);
    return true;
}

} // namespace

void vox::write_verbose_line(const char *line, size_t length) {
    char name[name_size];
    read_name();
    {
        scoped_lock guard(lock_id::verbose_file);
        memcpy(name, output_name, strlen(output_name) + 1);
    }
    if (name[0]) {
        if (append_to_file(name, line, length))
            return;
        warn("unable to open output file. Print to STDOUT");
    }
    // Through the C library, and flushed, so that lines keep their order with the program's output.
    fwrite(line, 1, length, stdout);
    fflush(stdout);
}

extern "C" const char *vox_serv_verbose_output_file_mode() {
    read_name();
    return output_name;
}

extern "C" int vox_serv_verbose_output_file(const char *name) {
    return !set_name(name, name ? strnlen(name, name_size) : 0);
}
VOX_ALIAS(vox_verbose_output_file, vox_serv_verbose_output_file);

// A Fortran name is padded with blanks and has no terminator.
extern "C" vox_int vox_verbose_output_file_(const char *name, size_t name_length) {
    size_t length = name ? strnlen(name, name_length) : 0;
    while (length > 0 && name[length - 1] == ' ')
        --length;
    char terminated[name_size];
    if (length > 0 && length < name_size)
        memcpy(terminated, name, length);
    terminated[length < name_size ? length : 0] = '\0';
    return !set_name(terminated, length);
}
VOX_ALIAS(VOX_VERBOSE_OUTPUT_FILE, vox_verbose_output_file_);

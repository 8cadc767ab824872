// verbose.cpp - see verbose.hpp.
#include "serv/verbose.hpp"

#include <errno.h>

#include "serv/environment.hpp"
#include "serv/lock.hpp"
#include "serv/parallel.hpp"
#include "serv/verbose_output.hpp"
#include "serv/verbose_text.hpp"

constinit int vox::verbose_word = -1;

namespace {

using namespace vox;

constinit std::atomic<bool> header_printed;

std::atomic_ref<int> mode_word() { return std::atomic_ref<int>(verbose_word); }

int mode_from_environment() {
    const env_value<128> value("VOX_VERBOSE");
    long long number = 0;
    return value.present() && parse_integer(value.text, 0, &number) && number == 1;
}

call_facts current_facts(double seconds) {
    call_facts facts;
    facts.seconds = seconds;
    facts.branch = vox_serv_cbwr_get(1);
    facts.dynamic = vox_serv_get_dynamic();
    facts.fast_mm = !vox_serv_get_fast_mm_status();
    facts.thread = thread_number();
    facts.threads = vox_serv_get_max_threads();
    for (int i = 0; i < 4; ++i)
        facts.domain_threads[i] = vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS + i);
    return facts;
}

// The text is made before the lock is taken: making it may choose the code path, and that may call
// the program's exit handler.
void print_header(int interface_kind) {
    if (VOX_LIKELY(header_printed.load(std::memory_order_acquire)))
        return;
    vox_version version;
    vox_serv_get_version(&version);
    char text[line_size];
    text_writer line(text, sizeof text);
    add_header_line(line, version, vox_serv_get_max_cpu_frequency(), interface_kind);
    once(header_printed, lock_id::verbose_header, [&] { write_verbose_line(text, line.length()); });
}

} // namespace

// Who has asked for the mode may then read the word as the plain integer that the public pointer
// makes of it: hence acquire and release.
int vox::read_verbose_mode() {
    int mode = mode_word().load(std::memory_order_acquire);
    if (mode >= 0)
        return mode;
    scoped_lock guard(lock_id::verbose_mode);
    mode = mode_word().load(std::memory_order_relaxed);
    if (mode < 0) {
        mode = mode_from_environment();
        mode_word().store(mode, std::memory_order_release);
    }
    return mode;
}

extern "C" int *vox_serv_verbose_mode() {
    read_verbose_mode();
    return &verbose_word;
}
VOX_ALIAS(vox_serv_iface_verbose_mode, vox_serv_verbose_mode);

extern "C" int vox_serv_verbose(int mode) {
    if (mode != 0 && mode != 1)
        return -1;
    scoped_lock guard(lock_id::verbose_mode);
    mode_word().store(mode, std::memory_order_release);
    return mode;
}
VOX_ALIAS(vox_verbose, vox_serv_verbose);
VOX_FORTRAN_FORM(vox_int, vox_verbose, VOX_VERBOSE, (const vox_int *mode), (*mode));

// The logged call may stand between a system call of the program's and its look at errno.
extern "C" void vox_serv_print_verbose_info(int interface_kind, const char *call, double seconds) {
    const int kept_errno = errno;
    print_header(interface_kind);
    char text[line_size];
    text_writer line(text, sizeof text);
    add_call_line(line, call, current_facts(seconds));
    write_verbose_line(text, line.length());
    errno = kept_errno;
}
VOX_ALIAS(vox_serv_iface_print_verbose_info, vox_serv_print_verbose_info);

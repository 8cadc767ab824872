// xerbla.cpp - reports of bad arguments and failed allocations: the standard routine, its
// replacement by a program, the registered handler.
//
// A report goes to the registered handler, else to the exported routine: the first of xerbla_,
// xerbla, XERBLA_ and XERBLA that the program defines itself (xerbla_ is what Fortran compilers
// produce), else the library's own. cdecl_xerbla is the second half alone, so that it can be a
// registered handler.
#include <stdio.h>
#include <string.h>

#include "serv/base.hpp"
#include "serv/catalogue.hpp"
#include "serv/handler_slot.hpp"
#include "serv/replaceable.hpp"
#include "vox/service.h"

namespace {

constinit vox::handler_slot<vox_xerbla_handler> registered;

// A Fortran routine takes the hidden length in 64 bits; an int argument leaves the upper half of
// its register undefined. Writing the lower half clears it.
void call(vox_xerbla_handler handler, const char *name, const vox_int *code, int name_length) {
    asm("movl %0, %0" : "+r"(name_length));
    handler(name, code, name_length);
}

int length_of(const char *name) { return int(vox_serv_strnlen_s(name, 4096)); }

} // namespace

extern "C" void vox_serv_default_xerbla(const char *name, const vox_int *code, int name_length) {
    if (!name || !code)
        return;
    constexpr int max_name = 20;
    char text[max_name + 2];
    const int wanted = name_length < 0 ? 0 : name_length < max_name ? name_length : max_name;
    const size_t length = strnlen(name, size_t(wanted));
    memcpy(text, name, length);
    text[length] = '\0';

    vox_serv_print(0, vox::message_newline, 0);
    switch (*code) {
    case VOX_XERBLA_WORKSPACE:
        vox_serv_print(0, vox::message_workspace, 1, text);
        break;
    case VOX_XERBLA_INCOMPATIBLE_OPTIONAL:
        vox_serv_print(0, vox::message_incompatible_optional, 1, text);
        break;
    case VOX_XERBLA_COPROCESSOR:
        vox_serv_print(0, vox::message_coprocessor, 1, text);
        break;
    case VOX_XERBLA_OUT_OF_MEMORY:
        vox_serv_print(0, vox::message_out_of_memory, 1, text);
        break;
    default:
        if (*code <= 0) // the negated INT_MIN wraps to itself
            vox_serv_print(0, vox::message_condition, 2, int(0u - unsigned(*code)), text);
        else
            vox_serv_print(0, vox::message_parameter, 2, int(*code), text);
    }
    fflush(nullptr);
}

// What the exported names stand for unless the program defines them.
extern "C" void vox_own_xerbla(const char *name, const vox_int *code, int name_length) {
    vox_serv_default_xerbla(name, code, name_length);
}

VOX_WEAK_ALIAS(xerbla, vox_own_xerbla);
VOX_WEAK_ALIAS(xerbla_, vox_own_xerbla);
VOX_WEAK_ALIAS(XERBLA, vox_own_xerbla);
VOX_WEAK_ALIAS(XERBLA_, vox_own_xerbla);

extern "C" void cdecl_xerbla(const char *name, const vox_int *code, int name_length) {
    if (!name || !code)
        return;
    call(vox::definition_in_force(vox_own_xerbla, xerbla_, xerbla, XERBLA_, XERBLA), name, code,
         name_length);
}

extern "C" void vox_serv_xerbla(const char *name, const vox_int *code, int name_length) {
    if (!name || !code)
        return;
    const vox_xerbla_handler handler = registered.get();
    call(handler ? handler : cdecl_xerbla, name, code, name_length);
}

extern "C" vox_xerbla_handler vox_serv_set_xerbla(vox_xerbla_handler handler) {
    return registered.set(handler, vox_serv_default_xerbla);
}
VOX_ALIAS(vox_set_xerbla, vox_serv_set_xerbla);

extern "C" void vox_serv_set_xerbla_interface(vox_xerbla_handler handler) {
    registered.set_if_empty(handler);
}

// Reports through cdecl_xerbla unless the program has registered a handler of its own.
extern "C" void cblas_xerbla(const char *name, vox_int parameter) {
    vox_serv_set_xerbla_interface(cdecl_xerbla);
    vox_serv_xerbla(name, &parameter, length_of(name));
}

extern "C" void cblas_xerbla_malloc_error(const char *name) {
    cblas_xerbla(name, VOX_XERBLA_WORKSPACE);
}

extern "C" int vox_serv_check_ptr(const void *pointer, const char *name) {
    if (pointer)
        return 0;
    const vox_int code = VOX_XERBLA_OUT_OF_MEMORY;
    vox_serv_xerbla(name, &code, length_of(name));
    return 1;
}

extern "C" int vox_serv_check_ptr_and_warn(const void *pointer, const char *) {
    return pointer ? 0 : 1;
}

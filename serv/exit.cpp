// exit.cpp - how a fatal condition ends the process: exit, or the program's own way.
#include <stdlib.h>

#include "serv/base.hpp"
#include "serv/handler_slot.hpp"
#include "vox/service.h"

namespace {

constinit vox::handler_slot<vox_exit_handler> registered;

} // namespace

extern "C" void vox_serv_exit(int status) {
    const vox_exit_handler handler = registered.get();
    if (handler)
        handler(status);
    else
        exit(status);
}

extern "C" void vox_serv_set_exit_handler(vox_exit_handler handler) { registered.set(handler); }
VOX_ALIAS(vox_set_exit_handler, vox_serv_set_exit_handler);

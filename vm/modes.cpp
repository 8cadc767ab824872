// modes.cpp - the mode, the status and the callback of a thread.
#include "serv/base.hpp"
#include "serv/environment.hpp"
#include "vm/thread_block.hpp"

namespace vox::vm {
thread_local constinit thread_block this_block = {};
}

namespace {

using vox::vm::this_block;

constexpr uint32_t fields[] = {TQM_ACCURACY_MASK, TQM_ERRMODE_MASK, TQM_FURTHER_MASK,
                               TQM_TRAP_MASK};

uint32_t initial_mode() {
    const vox::env_value<64> value("VOX_TQM_MODE");
    long long mode = 0;
    if (!value.present() || !vox::parse_integer(value.text, 0, &mode) || mode < 0 ||
        mode > UINT32_MAX)
        return TQM_DEFAULT_MODE;
    if (!(mode & TQM_ACCURACY_MASK))
        mode |= TQM_HA;
    if (!(mode & TQM_ERRMODE_MASK))
        mode |= TQM_ERRMODE_DEFAULT;
    return uint32_t(mode);
}

} // namespace

extern "C" uint32_t tqmGetMode() {
    if (VOX_UNLIKELY(this_block.mode == 0))
        this_block.mode = initial_mode();
    return uint32_t(this_block.mode);
}

extern "C" uint32_t tqmSetMode(uint32_t mode) {
    const uint32_t previous = tqmGetMode();
    uint32_t result = previous;
    for (const uint32_t field : fields)
        if (mode & field)
            result = (result & ~field) | (mode & field);
    this_block.mode = result;
    return previous;
}

extern "C" int tqmGetErrStatus() { return this_block.status; }

extern "C" int tqmSetErrStatus(int status) {
    const int previous = this_block.status;
    this_block.status = status;
    return previous;
}

extern "C" int tqmClearErrStatus() { return tqmSetErrStatus(TQM_STATUS_OK); }

extern "C" tqmErrorCallBack tqmGetErrorCallBack() { return this_block.callback; }

extern "C" tqmErrorCallBack tqmSetErrorCallBack(tqmErrorCallBack callback) {
    const tqmErrorCallBack previous = this_block.callback;
    this_block.callback = callback;
    const uint32_t mode = tqmGetMode();
    tqmSetMode(callback ? mode | TQM_ERRMODE_CALLBACK : mode & ~uint32_t(TQM_ERRMODE_CALLBACK));
    return previous;
}

extern "C" tqmErrorCallBack tqmClearErrorCallBack() { return tqmSetErrorCallBack(nullptr); }

VOX_FORTRAN_FORMS_OF(tqmSetMode, uint32_t, tqmsetmode_, TQMSETMODE_, (const uint32_t *mode),
                     (*mode));
VOX_FORTRAN_FORMS_OF(tqmGetMode, uint32_t, tqmgetmode_, TQMGETMODE_, (), ());
VOX_FORTRAN_FORMS_OF(tqmSetErrStatus, int, tqmseterrstatus_, TQMSETERRSTATUS_, (const int *status),
                     (*status));
VOX_FORTRAN_FORMS_OF(tqmGetErrStatus, int, tqmgeterrstatus_, TQMGETERRSTATUS_, (), ());
VOX_FORTRAN_FORMS_OF(tqmClearErrStatus, int, tqmclearerrstatus_, TQMCLEARERRSTATUS_, (), ());
VOX_FORTRAN_FORMS_OF(tqmSetErrorCallBack, tqmErrorCallBack, tqmseterrorcallback_,
                     TQMSETERRORCALLBACK_, (tqmErrorCallBack callback), (callback));
VOX_FORTRAN_FORMS_OF(tqmGetErrorCallBack, tqmErrorCallBack, tqmgeterrorcallback_,
                     TQMGETERRORCALLBACK_, (), ());
VOX_FORTRAN_FORMS_OF(tqmClearErrorCallBack, tqmErrorCallBack, tqmclearerrorcallback_,
                     TQMCLEARERRORCALLBACK_, (), ());

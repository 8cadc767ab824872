// cpu.cpp - the thin layer between the rules (cpu_choice) and the process: reads the settings once,
// keeps the choice, prints what has to be printed.
//
// Settings are words that move once from "unread" to a value; racing readers compute the same
// value, so they need no lock. Only the choice itself is made under the detection lock.
#include "serv/cpu.hpp"

#include <atomic>
#include <string.h>

#include "serv/environment.hpp"
#include "serv/inspector.hpp"
#include "serv/lock.hpp"

#ifndef VOX_DEFAULT_CPU_VENDOR
#define VOX_DEFAULT_CPU_VENDOR ""
#endif

namespace {

using namespace vox;

constexpr int unread = -1;
constexpr int branch_bits = 0x3F;
constexpr int64_t debug_given = int64_t(1) << 32;

constinit std::atomic<int> vendor_open{unread};
constinit std::atomic<int> cbwr_mode{unread};
constinit std::atomic<int64_t> debug_setting{unread}; // the integer, with debug_given above it
constinit std::atomic<bool> ceiling_fixed{false};
constinit std::atomic<int> ceiling{-1};           // a level, -1 for none
constinit std::atomic<int> ceiling_if_opened{-1}; // refused only because the vendor test is closed
constinit std::atomic<int> chosen{unread};        // type, the reason above it
constexpr int reason_shift = 8;

// Stores the value unless another is there already; returns the one that stands.
template <class T>
T settle(std::atomic<T> &word, T value) {
    inspector_quiet();
    T found = T(unread);
    return word.compare_exchange_strong(found, value) ? value : found;
}

bool supported_by_cpuid() {
    return strcmp(vendor_of(this_processor()).text, supported_vendor) == 0;
}

int64_t read_debug_setting() {
    const int64_t known = debug_setting.load(std::memory_order_relaxed);
    if (known != unread)
        return known;
    const env_value<30> value("VOX_DEBUG_CPU_TYPE");
    long long type = 0;
    if (!value.present() || !parse_integer(value.text, 10, &type))
        return settle(debug_setting, int64_t(0));
    // A number beyond 32 bits is refused like any other that is out of range.
    const int held = type < INT32_MIN ? INT32_MIN : type > INT32_MAX ? INT32_MAX : int(type);
    return settle(debug_setting, debug_given | uint32_t(held));
}

int read_cbwr_mode() {
    const int known = cbwr_mode.load(std::memory_order_relaxed);
    if (known != unread)
        return known;
    const env_value<128> value("VOX_CBWR");
    const bool given = value.present() && value.text[0];
    return settle(cbwr_mode, given ? parse_branch(value.text) : int(VOX_CBWR_OFF));
}

// The variable counts only until a ceiling has been asked for, successfully or not.
void read_ceiling() {
    if (ceiling_fixed.load(std::memory_order_relaxed))
        return;
    const env_value<30> value("VOX_ENABLE_INSTRUCTIONS");
    vox_serv_enable_instructions(parse_level(value.text));
}

cpu_choice choice_of(int word) {
    return {word & ((1 << reason_shift) - 1), cpu_reason(word >> reason_shift)};
}

void print_choice_message(const cpu_choice &choice, const cpu_settings &settings) {
    switch (choice.message) {
    case 0:
        break;
    case 1209:
        vox_serv_print(1, 1209, 0);
        break;
    case 1210:
        vox_serv_print(1, 1210, 0);
        vox_serv_print(1, 1211, 0);
        break;
    default:
        vox_serv_print(1, choice.message, 1, settings.debug_type);
    }
}

cpu_choice make_choice() {
    cpu_choice choice;
    cpu_settings settings;
    {
        scoped_lock guard(lock_id::detection);
        const int known = chosen.load(std::memory_order_acquire);
        if (known != unread)
            return choice_of(known);
        read_ceiling();
        settings = current_cpu_settings();
        choice = choose_cpu(this_cpu(), settings);
        if (choice.type == VOX_CPU_AVX512_ZEL_E1)
            choice.type = VOX_CPU_AVX512_ZEL;
        if (choice.message == 1209)
            cbwr_mode.store(VOX_CBWR_AUTO, std::memory_order_relaxed);
        chosen.store(choice.type | int(choice.reason) << reason_shift, std::memory_order_release);
    }
    print_choice_message(choice, settings); // by the thread that chose, when the lock is free again
    if (choice.message == 1210 || choice.message == 1213)
        vox_serv_exit(1);
    return choice;
}

} // namespace

vox::cpu_facts vox::this_cpu() {
    const bool vendor = vox_serv_quarn_cpu_true() || vendor_test_open();
    return {features(), e1_probe(this_processor()), vendor};
}

vox::cpu_settings vox::current_cpu_settings() {
    const int64_t debug = read_debug_setting();
    const int level = instruction_ceiling();
    cpu_settings s;
    s.debug_given = debug & debug_given;
    s.debug_type = int(uint32_t(debug));
    s.branch = read_cbwr_mode() & branch_bits;
    if (level >= 0)
        s.tiers = tiers_of_level(level);
    return s;
}

int vox::instruction_ceiling() { return ceiling.load(std::memory_order_relaxed); }

bool vox::vendor_test_open() {
    int open = vendor_open.load(std::memory_order_relaxed);
    if (open == unread) {
        const env_value<30> value("VOX_CPU_VENDOR");
        const char *text = value.state == env_state::missing ? VOX_DEFAULT_CPU_VENDOR : value.text;
        open = settle(vendor_open, int(vendor_opened(text, vendor_of(this_processor()))));
    }
    return open;
}

int vox::type_with_vendor_test_opened() {
    cpu_facts opened = this_cpu();
    opened.vendor_supported = true;
    cpu_settings settings = current_cpu_settings();
    const int level = ceiling_if_opened.load(std::memory_order_relaxed);
    if (level >= 0)
        settings.tiers = tiers_of_level(level);
    return reevaluate_cpu(opened, settings);
}

vox::cpu_choice vox::chosen_cpu() {
    const int known = chosen.load(std::memory_order_acquire);
    return VOX_LIKELY(known != unread) ? choice_of(known) : make_choice();
}

void vox::unsupported_cpu_type(int type) {
    vox_serv_print(1, 1213, 1, type);
    vox_serv_exit(1);
}

extern "C" int vox_serv_cpu_detect() { return chosen_cpu().type; }

extern "C" int vox_serv_get_cpu_type(int reevaluate) {
    if (!reevaluate)
        return vox_serv_cpu_detect();
    read_ceiling();
    return reevaluate_cpu(this_cpu(), current_cpu_settings());
}

extern "C" int vox_serv_enable_instructions(int level) {
    ceiling_fixed.store(true, std::memory_order_relaxed);
    const cpu_facts cpu = this_cpu();
    if (current_cpu_settings().debug_given || !level_supported(cpu, level))
        return 0;
    std::atomic<int> &word = cpu.vendor_supported ? ceiling : ceiling_if_opened;
    word.store(level, std::memory_order_relaxed);
    return cpu.vendor_supported;
}

extern "C" int vox_serv_quarn_cpu_true() {
    static constinit std::atomic<int> cached{unread};
    int flag = cached.load(std::memory_order_relaxed);
    if (flag == unread)
        flag = settle(cached, int(supported_by_cpuid()));
    return flag;
}

extern "C" int vox_serv_quarn_cpu() {
    const int branch = vox_serv_cbwr_get(1);
    if (branch == VOX_CBWR_OFF || branch == VOX_CBWR_AUTO)
        return vox_serv_quarn_cpu_true();
    return branch != VOX_CBWR_COMPATIBLE;
}

extern "C" int vox_serv_is_sse4_2_enabled() { return current_cpu_settings().tiers.sse42; }
extern "C" int vox_serv_is_avx_enabled() { return current_cpu_settings().tiers.avx; }
extern "C" int vox_serv_is_avx2_enabled() { return current_cpu_settings().tiers.avx2; }
extern "C" int vox_serv_is_avx512_enabled() { return current_cpu_settings().tiers.avx512; }
extern "C" int vox_serv_is_avx512_zel_enabled() { return current_cpu_settings().tiers.avx512_zel; }

extern "C" int vox_serv_cbwr_get(int what) {
    const int mode = read_cbwr_mode();
    return what == 1 ? mode & branch_bits : mode;
}
VOX_ALIAS(vox_serv_cbwr_get_nolock, vox_serv_cbwr_get); // reading takes no lock at all

extern "C" int vox_serv_cbwr_set(int mode) {
    const int branch = mode & branch_bits;
    if (branch != VOX_CBWR_OFF && branch != VOX_CBWR_AUTO && type_of_branch(branch) < 0)
        return VOX_CBWR_ERR_INVALID;
    if (!branch_supported(this_cpu(), branch))
        return VOX_CBWR_ERR_UNSUPPORTED;
    scoped_lock guard(lock_id::detection);
    if (chosen.load(std::memory_order_relaxed) != unread)
        return mode == read_cbwr_mode() ? VOX_CBWR_SUCCESS : VOX_CBWR_ERR_TOO_LATE;
    cbwr_mode.store(mode, std::memory_order_relaxed);
    return VOX_CBWR_SUCCESS;
}

extern "C" int vox_serv_cbwr_get_auto_branch() {
    return auto_branch(this_cpu(), current_cpu_settings().tiers);
}

VOX_ALIAS(vox_get_cpu_type, vox_serv_get_cpu_type);
VOX_FORTRAN_FORM(vox_int, vox_get_cpu_type, VOX_GET_CPU_TYPE, (const vox_int *reevaluate),
                 (*reevaluate));
VOX_ALIAS(vox_enable_instructions, vox_serv_enable_instructions);
VOX_FORTRAN_FORM(vox_int, vox_enable_instructions, VOX_ENABLE_INSTRUCTIONS, (const vox_int *level),
                 (*level));
VOX_ALIAS(vox_cbwr_set, vox_serv_cbwr_set);
VOX_FORTRAN_FORM(vox_int, vox_cbwr_set, VOX_CBWR_SET, (const vox_int *mode), (*mode));
VOX_ALIAS(vox_cbwr_get, vox_serv_cbwr_get);
VOX_FORTRAN_FORM(vox_int, vox_cbwr_get, VOX_CBWR_GET, (const vox_int *what), (*what));
VOX_ALIAS(vox_cbwr_get_auto_branch, vox_serv_cbwr_get_auto_branch);
VOX_FORTRAN_FORM(vox_int, vox_cbwr_get_auto_branch, VOX_CBWR_GET_AUTO_BRANCH, (), ());

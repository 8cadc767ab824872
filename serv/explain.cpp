// explain.cpp - the facts about this process and the reasons behind them, one by one.
#include <dlfcn.h>
#include <string.h>

#include "serv/code_paths.hpp"
#include "serv/cpu.hpp"
#include "serv/cpu_model.hpp"
#include "serv/frequency.hpp"
#include "serv/memory.hpp"
#include "serv/text.hpp"
#include "serv/threads.hpp"
#include "serv/topology.hpp"
#include "vox/service.h"

namespace {

using namespace vox;

// Facts of one section, handed to the caller.
class facts {
  public:
    facts(vox_fact_handler emit, void *context, const char *section)
        : emit_(emit), context_(context), section_(section) {}

    template <class... A>
    void add(const char *key, const char *format, A... arguments) const {
        char buffer[1024];
        text_writer text(buffer, sizeof buffer);
        if constexpr (sizeof...(arguments) == 0)
            text.add("%s", format);
        else
            text.add(format, arguments...);
        emit_(context_, section_, key, buffer);
    }

  private:
    vox_fact_handler emit_;
    void *context_;
    const char *section_;
};

void explain_version(const facts &f) {
    char text[200];
    vox_serv_get_version_string_c(text, sizeof text);
    f.add("version", text);
    Dl_info info;
    if (dladdr(reinterpret_cast<void *>(&vox_explain), &info) && info.dli_fname)
        f.add("library", info.dli_fname);
}

void explain_processor(const facts &f) {
    const cpu_snapshot &cpu = this_processor();
    f.add("vendor", vendor_of(cpu).text);
    const frequency_facts frequency = this_processors_frequency();
    if (frequency.brand[0])
        f.add("brand", frequency.brand);
    f.add("family and model", "%d, %d", family_of(cpu), model_of(cpu));
    f.add("microarchitecture", microarchitecture_name(vox_serv_get_microarchitecture()));
    f.add("virtual machine", vox_serv_cpu_is_virtual() ? "yes" : "no");
    char list[1024];
    text_writer names(list, sizeof list);
    for (int bit = 1; bit < 64; ++bit)
        if (features() >> bit & 1 && feature_name(bit))
            names.add(names.length() ? " %s" : "%s", feature_name(bit));
    f.add("features", list);
}

const char *reason_text(cpu_reason reason) {
    switch (reason) {
    case cpu_reason::debug_type:
        return "VOX_DEBUG_CPU_TYPE asks for it";
    case cpu_reason::branch:
        return "the reproducibility branch asks for it";
    case cpu_reason::vendor:
        return "the processor is another maker's and the vendor test is closed";
    case cpu_reason::ceiling:
        return "the instruction ceiling holds it down";
    case cpu_reason::features:
        return "the highest that processor and operating system support";
    case cpu_reason::below_minimum:
        return "the processor lacks SSE2";
    case cpu_reason::unsupported_type:
        return "VOX_DEBUG_CPU_TYPE is out of range";
    }
    return "";
}

void explain_code_path(const facts &f) {
    const cpu_choice choice = chosen_cpu();
    const cpu_settings settings = current_cpu_settings();
    f.add("code path", code_path_name(this_code_path()));
    f.add("why", reason_text(choice.reason));
    f.add("processor type", "%d", choice.type);
    const bool supported = vox_serv_quarn_cpu_true();
    f.add("vendor test", supported            ? "passed"
                         : vendor_test_open() ? "opened by VOX_CPU_VENDOR"
                                              : "not passed");
    const code_path opened =
        code_path_for(type_with_vendor_test_opened(), settings.branch != VOX_CBWR_OFF);
    if (choice.reason == cpu_reason::vendor && opened != this_code_path())
        f.add("with VOX_CPU_VENDOR=ANY", code_path_name(opened));
    static constexpr char tiers[][14] = {"SSE4_2",     "AVX",    "AVX2",
                                         "AVX512_ZEL", "AVX512", "AVX512_ZEL_E1"};
    const int level = instruction_ceiling();
    f.add("instruction ceiling", level < 0 ? "none" : tiers[level]);
    const char *const branch = branch_word(settings.branch);
    f.add("reproducibility", "%s (branch %s)",
          vox_serv_get_msg(settings.branch == VOX_CBWR_OFF ? 1208 : 1207),
          branch ? branch : "without a name");
    if (settings.debug_given)
        f.add("debug type", "%d", settings.debug_type);
}

void explain_threads(const facts &f) {
    static constexpr struct {
        int domain;
        char name[22];
    } domains[] = {{-1, "in general"},
                   {VOX_DOMAIN_BLAS, "BLAS"},
                   {VOX_DOMAIN_FFT, "transforms"},
                   {VOX_DOMAIN_TQM, "vector mathematics"},
                   {VOX_DOMAIN_PARDISO, "sparse solver"}};
    for (const auto &d : domains) {
        const thread_count n = current_threads(d.domain);
        const char *const limit = describe(n.limit);
        f.add(d.name, "%d, from %s%s%s", n.count, describe(n.origin, n.by),
              limit ? "; limited: " : "", limit ? limit : "");
    }
    f.add("dynamic", vox_serv_get_dynamic() ? "on" : "off");
}

void explain_topology(const facts &f) {
    const topology &t = this_topology();
    f.add("logical processors", "%d in the affinity mask", t.logical);
    f.add("physical cores", "%d (%s)", t.cores,
          t.source == core_source::cpuid     ? "by CPUID on each processor"
          : t.source == core_source::cpuinfo ? "by /proc/cpuinfo"
                                             : "each processor counted as one");
    f.add("threads per core", "%d", t.threads_per_core);
    const int quota = process_cpu_quota();
    if (quota > 0)
        f.add("control group quota", "%d processors", quota);
    f.add("processes per node", "%d", vox_serv_mpi_get_ppn());
}

void explain_memory(const facts &f) {
    const memory_facts m = memory_facts_now();
    f.add("allocation functions", m.hooked ? "the program's (i_malloc ...)" : "the C library's");
    f.add("scratch buffers", describe(m.pool));
    f.add("high-bandwidth memory", describe(m.fast));
    if (m.fast_limit == UINT64_MAX)
        f.add("high-bandwidth budget", "unlimited");
    else
        f.add("high-bandwidth budget", "%llu bytes, %llu in use", (unsigned long long)m.fast_limit,
              (unsigned long long)m.fast_used);
    f.add("held now", "%lld bytes in %d blocks", (long long)m.bytes_held, m.blocks_held);
}

void explain_logging(const facts &f) {
    f.add("verbose mode", *vox_serv_verbose_mode() ? "on" : "off");
    const char *const file = vox_serv_verbose_output_file_mode();
    f.add("output", file[0] ? file : "standard output");
}

} // namespace

extern "C" void vox_explain(vox_fact_handler emit, void *context) {
    if (!emit)
        return;
    explain_version({emit, context, "version"});
    explain_processor({emit, context, "processor"});
    explain_code_path({emit, context, "code path"});
    explain_threads({emit, context, "threads"});
    explain_topology({emit, context, "topology"});
    explain_memory({emit, context, "memory"});
    explain_logging({emit, context, "logging"});
}

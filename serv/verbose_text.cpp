// verbose_text.cpp - see verbose_text.hpp.
#include "serv/verbose_text.hpp"

#include "serv/cpu_choice.hpp"

namespace {

using namespace vox;

void add_time(text_writer &line, double seconds) {
    struct unit {
        double above, per_second;
        char name[3];
    };
    static constexpr unit units[] = {{1, 1, "s"}, {1e-3, 1e3, "ms"}, {1e-6, 1e6, "us"}};
    if (!(seconds > 0)) {
        line.add("0.00s");
        return;
    }
    for (const unit &u : units)
        if (seconds > u.above) {
            line.add_decimal(seconds * u.per_second);
            line.add("%s", u.name);
            return;
        }
    line.add("%.0fns", seconds * 1e9);
}

void add_branch(text_writer &line, int branch) {
    if (const char *word = branch_word(branch))
        line.add(" CNR:%s", word);
    else
        line.add(" CNR:?%x", unsigned(branch));
}

void add_threads(text_writer &line, const call_facts &facts) {
    static constexpr char domains[][8] = {"BLAS", "FFT", "TQM", "PARDISO"};
    line.add(" NThr:%d", facts.threads);
    for (int i = 0; i < 4; ++i)
        if (facts.domain_threads[i] != facts.threads)
            line.add(",%s:%d", domains[i], facts.domain_threads[i]);
}

void add_interface(text_writer &line, int kind) {
    switch (kind) {
    case 0:
        return;
    case 1:
        return line.add(" lp64");
    case 2:
        return line.add(" ilp64");
    case -1:
        return line.add(" cdecl");
    case -2:
        return line.add(" stdcall");
    default:
        return line.add(" iface%x", unsigned(kind));
    }
}

} // namespace

void vox::add_call_line(text_writer &line, const char *call, const call_facts &facts) {
    line.add("VOX_VERBOSE %.*s ", longest_call_text, call ? call : "");
    add_time(line, facts.seconds);
    add_branch(line, facts.branch);
    line.add(" Dyn:%d FastMM:%d TID:%-2d", facts.dynamic, facts.fast_mm, facts.thread);
    add_threads(line, facts);
    line.add("\n");
}

void vox::add_header_line(text_writer &line, const vox_version &version, double rated_ghz,
                          int interface_kind) {
    line.add("VOX_VERBOSE Quarn(R) VOX %d.%d", version.major_version, version.minor_version);
    if (version.update > 0)
        line.add(" Update %d", version.update);
    line.add(" %s build %s for %s %s, Lnx ", version.product_status, version.build,
             version.platform, version.processor);
    line.add_decimal(rated_ghz);
    line.add("GHz");
    add_interface(line, interface_kind);
    line.add(" quarn_thread\n");
}

// report.cpp - see report.hpp.
#include "bench/peers/report.hpp"

#include <algorithm>
#include <cmath>

namespace {

struct mean {
    double logarithms = 0;
    int count = 0;

    void add(double ratio) {
        logarithms += std::log(ratio);
        ++count;
    }
    std::string text() const {
        if (!count)
            return "";
        char digits[32];
        std::snprintf(digits, sizeof digits, "%.2f", std::exp(logarithms / count));
        return digits;
    }
};

// In the order in which they were measured.
std::vector<std::string> routines_of(const std::vector<peers::measured> &all) {
    std::vector<std::string> names;
    for (const peers::measured &m : all)
        if (std::find(names.begin(), names.end(), m.routine) == names.end())
            names.push_back(m.routine);
    return names;
}

} // namespace

double peers::measured::ratio() const {
    double best = 1e300;
    for (size_t i = 1; i < times.size(); ++i)
        if (times[i] > 0)
            best = std::min(best, times[i]);
    return best / times[0];
}

void peers::print_header(const std::string &name, const std::vector<library> &libraries,
                         const char *unit, bool shares) {
    std::printf("\n%-14s", name.c_str());
    for (const library &l : libraries)
        std::printf("%21s", l.name.c_str());
    std::printf("%10s%8s", unit, "ratio");
    if (shares)
        std::printf("%8s", "peak%");
    std::printf("   times in ns\n");
}

void peers::print_line(const measured &m) {
    std::printf("%14s", m.size.c_str());
    for (double t : m.times)
        if (t > 0)
            std::printf("%21.1f", t * 1e9);
        else
            std::printf("%21s", "-");
    std::printf("%10.1f%8.2f", m.rate, m.ratio());
    if (m.share > 0)
        std::printf("%8.1f", m.share);
    std::printf("\n");
    std::fflush(stdout);
}

void peers::print_summary(const std::vector<measured> &all, std::FILE *to) {
    std::fprintf(to, "| routine | s | d | c | z | mean | minimum | where |\n"
                     "|---|---:|---:|---:|---:|---:|---:|---|\n");
    for (const std::string &routine : routines_of(all)) {
        mean types[4], total;
        const measured *least = nullptr;
        for (const measured &m : all) {
            if (m.routine != routine)
                continue;
            types[m.type].add(m.ratio());
            total.add(m.ratio());
            if (!least || m.ratio() < least->ratio())
                least = &m;
        }
        std::fprintf(to, "| %s | %s | %s | %s | %s | %s | %.2f | %s, n = %s |\n", routine.c_str(),
                     types[0].text().c_str(), types[1].text().c_str(), types[2].text().c_str(),
                     types[3].text().c_str(), total.text().c_str(), least->ratio(),
                     least->name.c_str(), least->size.c_str());
    }
}

void peers::print_shares(const std::vector<measured> &all, std::FILE *to) {
    bool first = true;
    for (const std::string &routine : routines_of(all)) {
        const measured *least[4] = {};
        for (const measured &m : all)
            if (m.routine == routine && m.large &&
                (!least[m.type] || m.share < least[m.type]->share))
                least[m.type] = &m;
        if (std::count(std::begin(least), std::end(least), nullptr) == 4)
            continue;
        if (first)
            std::fprintf(to, "\n| lowest %% of the peak | s | d | c | z |\n"
                             "|---|---:|---:|---:|---:|\n");
        first = false;
        std::fprintf(to, "| %s |", routine.c_str());
        for (const measured *m : least)
            if (m)
                std::fprintf(to, " %.0f (n = %s) |", m->share, m->size.c_str());
            else
                std::fprintf(to, " |");
        std::fprintf(to, "\n");
    }
}

void peers::print_below(double bar, std::vector<measured> all, std::FILE *to) {
    std::erase_if(all, [bar](const measured &m) { return m.ratio() >= bar; });
    std::sort(all.begin(), all.end(),
              [](const measured &p, const measured &q) { return p.ratio() < q.ratio(); });
    std::fprintf(to, "\n%zu below %.2f%s\n", all.size(), bar, all.empty() ? "" : ":");
    for (const measured &m : all)
        std::fprintf(to, "  %.2f  %s, n = %s\n", m.ratio(), m.name.c_str(), m.size.c_str());
}

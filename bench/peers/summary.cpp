// summary.cpp - see summary.hpp.
#include "bench/peers/summary.hpp"

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

} // namespace

std::string peers::case_name(const routine &r, size_t type) {
    const std::string symbol = r.symbols[type], name = r.name;
    const size_t mark = name.find('_');
    return mark == std::string::npos ? symbol : symbol + name.substr(mark);
}

void peers::print_summary(const std::vector<measured> &all, std::FILE *to) {
    std::fprintf(to, "| routine | s | d | c | z | mean | minimum | where |\n"
                     "|---|---:|---:|---:|---:|---:|---:|---|\n");
    for (const routine &r : routines()) {
        mean types[4], total;
        const measured *least = nullptr;
        for (const measured &m : all) {
            if (m.what != &r)
                continue;
            types[m.type].add(m.ratio);
            total.add(m.ratio);
            if (!least || m.ratio < least->ratio)
                least = &m;
        }
        if (least)
            std::fprintf(to, "| %s | %s | %s | %s | %s | %s | %.2f | %s, n = %s |\n", r.name,
                         types[0].text().c_str(), types[1].text().c_str(), types[2].text().c_str(),
                         types[3].text().c_str(), total.text().c_str(), least->ratio,
                         case_name(r, least->type).c_str(), least->size.text().c_str());
    }
}

void peers::print_shares(const std::vector<measured> &all, std::FILE *to) {
    bool first = true;
    for (const routine &r : routines()) {
        const measured *least[4] = {};
        for (const measured &m : all)
            if (m.what == &r && r.level() == 3 &&
                r.operations(m.size) >= r.operations({500, 500, 500}) &&
                (!least[m.type] || m.share < least[m.type]->share))
                least[m.type] = &m;
        if (std::count(std::begin(least), std::end(least), nullptr) == 4)
            continue;
        if (first)
            std::fprintf(to, "\n| lowest %% of the peak | s | d | c | z |\n"
                             "|---|---:|---:|---:|---:|\n");
        first = false;
        std::fprintf(to, "| %s |", r.name);
        for (const measured *m : least)
            if (m)
                std::fprintf(to, " %.0f (n = %s) |", m->share, m->size.text().c_str());
            else
                std::fprintf(to, " |");
        std::fprintf(to, "\n");
    }
}

void peers::print_below(double bar, std::vector<measured> all, std::FILE *to) {
    std::erase_if(all, [bar](const measured &m) { return m.ratio >= bar; });
    std::sort(all.begin(), all.end(),
              [](const measured &p, const measured &q) { return p.ratio < q.ratio; });
    std::fprintf(to, "\n%zu below %.2f%s\n", all.size(), bar, all.empty() ? "" : ":");
    for (const measured &m : all)
        std::fprintf(to, "  %.2f  %s, n = %s\n", m.ratio, case_name(*m.what, m.type).c_str(),
                     m.size.text().c_str());
}

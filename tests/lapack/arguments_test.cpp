// arguments_test.cpp - bad arguments of the Fortran forms: the report, info, and that nothing is
// touched; verbose lines. Every routine that checks, by the kinds of its parameters.
#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/support/child.hpp"
#include "tests/support/matches.hpp"
#include "tests/support/reports.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

// Parameters, blank-separated: o:UL an option and its letters, n:3 a size, k:3<=5 and k:5>=3 sizes
// with a bound, A an array, P pivots, r a real number of at least 0, ld:5 and lw:5 leading dimensions and
// lengths of workspace with their least values. info follows them. * is T for real types, C for complex
// ones, Q or and un.
struct routine {
    const char *stem, *parameters;
    const char *types = "sdcz";
};

// On matrices of 5 x 3 or of order 3, with 2 right-hand sides or reflectors.
constexpr routine routines[] = {
    {"getrf", "n:5 n:3 A ld:5 P"},
    {"getf2", "n:5 n:3 A ld:5 P"},
    {"getrf2", "n:5 n:3 A ld:5 P"},
    {"getrs", "o:NTC n:3 n:2 A ld:3 P A ld:3"},
    {"gesv", "n:3 n:2 A ld:3 P A ld:3"},
    {"getri", "n:3 A ld:3 P A lw:3"},
    {"gecon", "o:1OI n:3 A ld:3 r A A A"},
    {"potrf", "o:UL n:3 A ld:3"},
    {"potf2", "o:UL n:3 A ld:3"},
    {"potrf2", "o:UL n:3 A ld:3"},
    {"potri", "o:UL n:3 A ld:3"},
    {"lauum", "o:UL n:3 A ld:3"},
    {"potrs", "o:UL n:3 n:2 A ld:3 A ld:3"},
    {"posv", "o:UL n:3 n:2 A ld:3 A ld:3"},
    {"pocon", "o:UL n:3 A ld:3 r A A A"},
    {"trtri", "o:UL o:NU n:3 A ld:3"},
    {"trti2", "o:UL o:NU n:3 A ld:3"},
    {"trtrs", "o:UL o:NTC o:NU n:3 n:2 A ld:3 A ld:3"},
    {"trcon", "o:1OI o:UL o:NU n:3 A ld:3 A A A"},
    {"geqrf", "n:5 n:3 A ld:5 A A lw:3"},
    {"gelqf", "n:5 n:3 A ld:5 A A lw:5"},
    {"geqr2", "n:5 n:3 A ld:5 A A"},
    {"gelq2", "n:5 n:3 A ld:5 A A"},
    {"geqp3", "n:5 n:3 A ld:5 P A A lw:10", "sd"},
    {"geqp3", "n:5 n:3 A ld:5 P A A lw:4 A", "cz"},
    {"Qgqr", "n:5 k:3<=5 k:2<=3 A ld:5 A A lw:3"},
    {"Qg2r", "n:5 k:3<=5 k:2<=3 A ld:5 A A"},
    {"Qglq", "n:3 k:5>=3 k:2<=3 A ld:3 A A lw:3"},
    {"Qgl2", "n:3 k:5>=3 k:2<=3 A ld:3 A A"},
    {"Qmqr", "o:LR o:N* n:5 n:3 k:2<=5 A ld:5 A A ld:5 A lw:3"},
    {"Qm2r", "o:LR o:N* n:5 n:3 k:2<=5 A ld:5 A A ld:5 A"},
    {"Qmlq", "o:LR o:N* n:5 n:3 k:2<=5 A ld:2 A A ld:5 A lw:3"},
    {"Qml2", "o:LR o:N* n:5 n:3 k:2<=5 A ld:2 A A ld:5 A"},
    {"gels", "o:N* n:5 n:3 n:2 A ld:5 A ld:5 A lw:6"},
};

// One call: what lies at each address that is passed.
class call {
  public:
    call(const routine &r, char type)
        : single_type_(type == 's' || type == 'c'), name_(type + std::string(r.stem)),
          memory_(13 * room, untouched) {
        const bool real = type == 's' || type == 'd';
        if (name_[1] == 'Q')
            name_.replace(1, 1, real ? "or" : "un");
        std::istringstream all(r.parameters);
        for (std::string p; all >> p;) {
            std::replace(p.begin(), p.end(), '*', real ? 'T' : 'C');
            parameters_.push_back(p);
            values_.push_back(valid(p));
        }
    }
    std::string upper_name() const {
        std::string upper = name_;
        std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
        return upper;
    }
    size_t size() const { return parameters_.size(); }
    bool can_be_bad(size_t i) const { return parameters_[i] != "A" && parameters_[i] != "P"; }
    std::vector<vox_int> bad_values(size_t i) const {
        const std::string &p = parameters_[i];
        if (p[0] == 'o')
            return {'Q', ' '};
        if (p[0] == 'l')
            return {valid(p) - 1, 0};
        if (p.find("<=") != std::string::npos)
            return {-1, std::stoi(p.substr(p.find('=') + 1)) + 1};
        if (p.find(">=") != std::string::npos)
            return {std::stoi(p.substr(p.find('=') + 1)) - 1};
        return {-1};
    }
    void spoil(size_t i, vox_int value) { values_[i] = value; }
    void identity() { // what every routine can work on
        single_type_ ? fill(0, memory_.size(), 1.0F) : fill(0, memory_.size(), 1.0);
        for (size_t i = 0; i < size(); ++i)
            if (parameters_[i] == "P")
                fill(i * room, room, vox_int(1));
    }

    vox_int run() {
        auto *const routine =
            reinterpret_cast<void (*)(void *, void *, void *, void *, void *, void *, void *,
                                      void *, void *, void *, void *, void *, void *)>(
                dlsym(RTLD_DEFAULT, (name_ + "_").c_str()));
        if (!routine)
            ADD_FAILURE() << "no " << name_;
        vox_int info = 77;
        void *a[13] = {};
        for (size_t i = 0; i < size(); ++i)
            a[i] = address(i);
        a[size()] = &info;
        routine(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12]);
        return info;
    }
    bool touched() const { return memory_ != decltype(memory_)(memory_.size(), untouched); }
    std::string verbose_line() const {
        std::string line = upper_name() + "\\(";
        for (size_t i = 0; i < size(); ++i) {
            const char kind = parameters_[i][0];
            line += kind == 'A' || kind == 'P' || kind == 'r' ? "0x[0-9a-f]+"
                    : kind == 'o'                             ? std::string(1, char(values_[i]))
                                                              : std::to_string(values_[i]);
            line += ',';
        }
        return line + "-?[0-9]+\\)";
    }

  private:
    static vox_int valid(const std::string &p) {
        if (p == "A" || p == "P" || p == "r")
            return 1;
        return p[0] == 'o' ? p[2] : std::stoi(p.substr(p.find(':') + 1));
    }
    template <class X>
    void fill(size_t from, size_t bytes, X value) {
        for (size_t at = from; at < from + bytes; at += sizeof value)
            std::memcpy(&memory_[at], &value, sizeof value);
    }
    void *address(size_t i) {
        if (parameters_[i] == "A" || parameters_[i] == "P")
            return &memory_[i * room];
        if (parameters_[i] != "r")
            return &values_[i];
        single_ = float(values_[i]);
        double_ = values_[i];
        return single_type_ ? static_cast<void *>(&single_) : &double_;
    }

    static constexpr size_t room = 512;              // bytes of each array
    static constexpr unsigned char untouched = 0x3f; // numbers of about half, and pivots beyond all
    bool single_type_;
    std::string name_;
    std::vector<std::string> parameters_;
    std::vector<vox_int> values_;
    std::vector<unsigned char> memory_;
    float single_ = 0;
    double double_ = 0;
};

template <class Body>
void for_every_call(const Body &body) {
    for (const routine &r : routines)
        for (const char *type = r.types; *type; ++type)
            body(call(r, *type));
}

// One bad argument, and two of which the first is reported.
TEST(LapackArguments, TheFirstBadOneIsReportedAndNothingIsTouched) {
    const reports_recorded recorded;
    for_every_call([](const call &good) {
        std::string name = good.upper_name();
        name.resize(std::max<size_t>(6, name.size()), ' ');
        for (size_t i = 0; i < good.size(); ++i)
            for (vox_int bad : good.can_be_bad(i) ? good.bad_values(i) : std::vector<vox_int>())
                for (size_t j = i; j < good.size(); ++j) {
                    if (!good.can_be_bad(j))
                        continue;
                    call c = good;
                    c.spoil(j, good.bad_values(j)[0]);
                    c.spoil(i, bad);
                    reports.clear();
                    EXPECT_EQ(c.run(), -int(i + 1)) << name;
                    EXPECT_EQ(reports, name + ':' + std::to_string(i + 1) + ' ');
                    EXPECT_FALSE(c.touched()) << name;
                }
    });
}

CHILD(call_everything_valid) {
    for_every_call([](call c) {
        c.identity();
        std::fprintf(stderr, "%s\n", c.verbose_line().c_str());
        c.run();
    });
}
TEST(LapackVerbose, EveryCallPrintsItsLineWithItsInfo) {
    const child_result result = run_child(call_everything_valid, {{"VOX_VERBOSE", "1"}});
    ASSERT_EQ(result.status, 0);
    std::istringstream expected(result.err), lines(result.out);
    std::string pattern, line;
    std::vector<std::string> printed;
    while (std::getline(lines, line))
        printed.push_back(line);
    size_t at = 0;
    while (std::getline(expected, pattern)) {
        const std::string wanted = "VOX_VERBOSE " + pattern + " .*";
        while (at < printed.size() && !matches(printed[at], wanted))
            ++at;
        EXPECT_LT(at++, printed.size()) << pattern;
    }
}

} // namespace

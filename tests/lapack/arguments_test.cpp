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
// lengths of workspace with their least values. info follows them.
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
    {"orgqr", "n:5 k:3<=5 k:2<=3 A ld:5 A A lw:3", "sd"},
    {"ungqr", "n:5 k:3<=5 k:2<=3 A ld:5 A A lw:3", "cz"},
    {"org2r", "n:5 k:3<=5 k:2<=3 A ld:5 A A", "sd"},
    {"ung2r", "n:5 k:3<=5 k:2<=3 A ld:5 A A", "cz"},
    {"orglq", "n:3 k:5>=3 k:2<=3 A ld:3 A A lw:3", "sd"},
    {"unglq", "n:3 k:5>=3 k:2<=3 A ld:3 A A lw:3", "cz"},
    {"orgl2", "n:3 k:5>=3 k:2<=3 A ld:3 A A", "sd"},
    {"ungl2", "n:3 k:5>=3 k:2<=3 A ld:3 A A", "cz"},
    {"ormqr", "o:LR o:NT n:5 n:3 k:2<=5 A ld:5 A A ld:5 A lw:3", "sd"},
    {"unmqr", "o:LR o:NC n:5 n:3 k:2<=5 A ld:5 A A ld:5 A lw:3", "cz"},
    {"orm2r", "o:LR o:NT n:5 n:3 k:2<=5 A ld:5 A A ld:5 A", "sd"},
    {"unm2r", "o:LR o:NC n:5 n:3 k:2<=5 A ld:5 A A ld:5 A", "cz"},
    {"ormlq", "o:LR o:NT n:5 n:3 k:2<=5 A ld:2 A A ld:5 A lw:3", "sd"},
    {"unmlq", "o:LR o:NC n:5 n:3 k:2<=5 A ld:2 A A ld:5 A lw:3", "cz"},
    {"orml2", "o:LR o:NT n:5 n:3 k:2<=5 A ld:2 A A ld:5 A", "sd"},
    {"unml2", "o:LR o:NC n:5 n:3 k:2<=5 A ld:2 A A ld:5 A", "cz"},
    {"gels", "o:NT n:5 n:3 n:2 A ld:5 A ld:5 A lw:6", "sd"},
    {"gels", "o:NC n:5 n:3 n:2 A ld:5 A ld:5 A lw:6", "cz"},
};

// One call: what lies at each address that is passed.
class call {
  public:
    call(const routine &r, char type) : type_(type), name_(type + std::string(r.stem)) {
        std::istringstream all(r.parameters);
        for (std::string p; all >> p;) {
            parameters_.push_back(p);
            values_.push_back(valid(p));
        }
        std::memset(array_, 0x3f, sizeof array_); // numbers of about half, and pivots beyond all
    }
    const std::string &name() const { return name_; }
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
        const size_t real = type_ == 's' || type_ == 'c' ? 4 : 8;
        const float one = 1;
        const double wide_one = 1;
        std::memset(array_, 0, sizeof array_);
        for (size_t i = 0; i < sizeof array_ / real; ++i)
            std::memcpy(reinterpret_cast<char *>(array_) + i * real,
                        real == 4 ? static_cast<const void *>(&one) : &wide_one, real);
        for (size_t i = 0; i < size(); ++i)
            if (parameters_[i] == "P")
                std::fill_n(reinterpret_cast<vox_int *>(array_[i]), 8, 1);
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
    bool touched() const {
        for (unsigned char byte : bytes())
            if (byte != 0x3f)
                return true;
        return false;
    }
    std::string verbose_line() const {
        std::string line;
        for (char c : name_)
            line += char(std::toupper(c));
        line += "\\(";
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
    std::vector<unsigned char> bytes() const {
        std::vector<unsigned char> all(sizeof array_);
        std::memcpy(all.data(), array_, sizeof array_);
        return all;
    }
    void *address(size_t i) {
        if (parameters_[i] == "A" || parameters_[i] == "P")
            return array_[i];
        if (parameters_[i] != "r")
            return &values_[i];
        single_ = float(values_[i]);
        double_ = values_[i];
        return type_ == 's' || type_ == 'c' ? static_cast<void *>(&single_) : &double_;
    }

    char type_;
    std::string name_;
    std::vector<std::string> parameters_;
    std::vector<vox_int> values_;
    double array_[13][64];
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
        std::string upper;
        for (char c : good.name())
            upper += char(std::toupper(c));
        for (size_t i = 0; i < good.size(); ++i)
            for (vox_int bad : good.can_be_bad(i) ? good.bad_values(i) : std::vector<vox_int>())
                for (size_t j = i; j < good.size(); ++j) {
                    if (!good.can_be_bad(j))
                        continue;
                    call c = good;
                    c.spoil(j, good.bad_values(j)[0]);
                    c.spoil(i, bad);
                    reports.clear();
                    EXPECT_EQ(c.run(), -int(i + 1)) << upper;
                    EXPECT_EQ(reports, upper.substr(0, 6).append(
                                           upper.size() < 6 ? 6 - upper.size() : 0, ' ') +
                                           upper.substr(std::min<size_t>(6, upper.size())) + ':' +
                                           std::to_string(i + 1) + ' ');
                    EXPECT_FALSE(c.touched()) << upper;
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

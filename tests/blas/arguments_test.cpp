// arguments_test.cpp - what levels 2 and 3 do with bad arguments, and how their calls are logged; every
// routine, by its parameter letters.
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/blas/routine_tables.hpp"
#include "tests/support/child.hpp"
#include "tests/support/reports.hpp"
#include "tests/support/verbose_lines.hpp"

namespace {

using namespace test;

template <class T>
const std::vector<routine<T>> &every_routine() {
    static const std::vector<routine<T>> all = [] {
        std::vector<routine<T>> both = routines<T>();
        both.insert(both.end(), level3_routines<T>().begin(), level3_routines<T>().end());
        if constexpr (std::is_same_v<T, float>)
            both.push_back(ROUTINE(s, gemm_compute, "tvmnKALBMbCN"));
        if constexpr (std::is_same_v<T, double>)
            both.push_back(ROUTINE(d, gemm_compute, "tvmnKALBMbCN"));
        return both;
    }();
    return all;
}

bool is_ld(char letter) { return std::strchr("LMN", letter); }

// The parameters that can be bad, in their order, which is the order of the checks.
template <class T>
std::string checked(const routine<T> &r) {
    std::string letters;
    for (char letter : r.letters)
        if (!is_scalar_or_array(letter))
            letters += letter;
    return letters;
}

// Letters of side and operations, which decide about the leading dimensions of level 3.
struct shape {
    char side, trans, transb;
};
constexpr shape shapes[] = {{'L', 'N', 'N'}, {'R', 'T', 'N'}, {'L', 'N', 'T'}};

// The operation besides 'N' that a routine always takes.
template <class T>
char transposition(const routine<T> &r) {
    return r.hermitian() && r.has('t') ? 'C' : 'T';
}

template <class T>
arguments<T> valid(const routine<T> &r, CBLAS_LAYOUT layout, vox_int m, vox_int n,
                   const shape &s = shapes[0]) {
    arguments<T> a;
    a.layout = layout;
    a.side = s.side;
    a.trans = s.trans == 'N' ? 'N' : transposition(r);
    a.transb = s.transb;
    a.m = r.has('m') ? m : n;
    a.n = n;
    a.k = 4;
    a.kl = r.has('l') ? 2 : 0;
    a.ku = r.has('k') ? 1 : 0;
    a.alpha = a.beta = vox::make<T>(2);
    for (char letter : r.letters)
        if (is_ld(letter))
            a.integer(letter) = std::max(1, r.least_ld(letter, a));
    return a;
}

// Letters and C values of other options among them; updates do not take every operation.
template <class T>
const char *bad_options(const routine<T> &r, char letter) {
    const bool update = r.has('N') && !r.has('v');
    if (letter == 't')
        return !update || !vox::is_complex<T> ? "RU " : r.hermitian() ? "TU " : "CU ";
    return letter == 'v' ? "RU " : letter == 'u' ? "XNC" : letter == 'e' ? "UNC" : "XT ";
}

template <class T>
void spoil(const routine<T> &r, char letter, int variant, arguments<T> &a) {
    if (is_option(letter))
        a.option(letter) = bad_options(r, letter)[variant];
    else if (is_ld(letter))
        a.integer(letter) = variant == 0 ? r.least_ld(letter, a) - 1 : -variant;
    else if (letter == 'i' || letter == 'j')
        a.integer(letter) = 0;
    else
        a.integer(letter) = variant == 0 ? -1 : INT_MIN + variant;
}

// Bad parameters, the subset of those that can be. What a leading dimension must be is not known
// where the option that decides it is bad: it is large then, or negative.
template <class T>
std::string spoil_subset(const routine<T> &r, unsigned subset, arguments<T> &a) {
    const std::string letters = checked(r);
    std::string bad;
    for (size_t i = 0; i < letters.size(); ++i)
        if (subset >> i & 1)
            bad += letters[i];
    const bool unknown = bad.find_first_of("etv") != std::string::npos;
    for (size_t i = 0; i < letters.size(); ++i)
        if (subset >> i & 1)
            spoil(r, letters[i], unknown && is_ld(letters[i]) ? 1 : int(subset + i) % 3, a);
        else if (unknown && is_ld(letters[i]))
            a.integer(letters[i]) = 9;
    return bad;
}

template <class T>
std::string report_of(const routine<T> &r, bool c, char letter) {
    std::string name = c ? "cblas_" + r.name : upper_case(r.name);
    name.resize(std::max<size_t>(6, name.size()), ' ');
    return name + ':' + std::to_string(r.letters.find(letter) + (c ? 2 : 1)) + ' ';
}

// In Fortran the first bad one. In C every bad option, and the first of the others.
template <class T>
std::string expected_reports(const routine<T> &r, bool c, const std::string &bad) {
    std::string expected;
    for (char letter : bad) {
        if (c || expected.empty())
            expected += report_of(r, c, letter);
        if (!is_option(letter))
            break;
    }
    return expected;
}

template <class T>
class Arguments : public ::testing::Test {
  protected:
    // What a call reports, "and touches an operand" if it does.
    std::string reported(const form<T> &call, arguments<T> a) {
        const std::vector<T> before(64, vox::make<T>(7, 7));
        std::vector<T> operands[3] = {before, before, before};
        a.a = operands[0].data();
        a.x = operands[1].data();
        a.y = operands[2].data();
        reports.clear();
        call(a);
        for (const std::vector<T> &o : operands)
            if (std::memcmp(o.data(), before.data(), before.size() * sizeof(T)) != 0)
                reports += "and touches an operand";
        return reports;
    }
    const reports_recorded recorded;
};
TYPED_TEST_SUITE(Arguments, element_types);

// All subsets of the parameters, bad at the same time.
TYPED_TEST(Arguments, EachBadOneIsReportedWithItsNumberAndNothingIsTouched) {
    for (const routine<TypeParam> &r : every_routine<TypeParam>())
        for (const auto &[m, n] : {std::pair(3, 5), std::pair(5, 3), std::pair(0, 0)})
            for (CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor})
                for (const shape &s : shapes)
                    for (bool c : {false, true}) {
                        if (c ? !r.c : layout == CblasRowMajor)
                            continue;
                        const unsigned subsets = 1u << checked(r).size();
                        for (unsigned subset = n ? 1 : 0; subset < subsets; ++subset) {
                            arguments<TypeParam> a = valid(r, layout, m, n, s);
                            const std::string bad = spoil_subset(r, subset, a);
                            ASSERT_EQ(this->reported(c ? r.c : r.fortran, a),
                                      expected_reports(r, c, bad))
                                << r.name << ' ' << m << ' ' << n << " bad: " << bad;
                        }
                    }
}

TYPED_TEST(Arguments, ABadLayoutIsAllThatIsReported) {
    for (const routine<TypeParam> &r : every_routine<TypeParam>())
        for (int layout : {0, 100, 103})
            for (bool all_bad : {false, true}) {
                arguments<TypeParam> a = valid(r, CBLAS_LAYOUT(layout), 3, 5);
                for (char letter : all_bad ? checked(r) : "")
                    spoil(r, letter, 0, a);
                const std::string expected = r.c ? "cblas_" + r.name + ":1 " : "";
                EXPECT_EQ(r.c ? this->reported(r.c, a) : "", expected);
            }
}

template <class T>
void call_every_routine() {
    std::vector<T> operands(300, vox::one<T>);
    for (const routine<T> &r : every_routine<T>()) {
        arguments<T> a = valid(r, CblasColMajor, 3, 2);
        a.a = operands.data();
        a.x = a.a + 100;
        a.y = a.a + 200;
        std::fprintf(stderr, "%s \n", call_line(r, a).c_str());
        r.fortran(a);
    }
}
CHILD(call_everything) {
    call_every_routine<float>();
    call_every_routine<double>();
    call_every_routine<vox_complex_float>();
    call_every_routine<vox_complex_double>();
    std::vector<double> ones(9, 1.0);
    cblas_dgemv(CblasRowMajor, CblasNoTrans, 3, 2, 1.0, ones.data(), 2, ones.data(), 1, 0.0,
                ones.data() + 6, 1);
    std::fprintf(stderr, "DGEMV(T,2,3,\n");
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, 3, 1, 2, 1.0, ones.data(), 2, ones.data(),
                2, 0.0, ones.data() + 6, 1);
    std::fprintf(stderr, "DGEMM(T,N,1,3,2,");
}

TEST(Verbose, EveryCallPrintsItsLine) {
    const child_result result = run_child(call_everything, {{"VOX_VERBOSE", "1"}});
    ASSERT_EQ(result.status, 0);
    std::istringstream expected(result.err);
    std::vector<std::string> lines;
    for (std::string line; std::getline(expected, line);)
        lines.push_back(line);
    expect_verbose_lines(result.out, lines);
}

} // namespace

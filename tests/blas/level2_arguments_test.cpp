// level2_arguments_test.cpp - what level 2 does with bad arguments, how its calls are logged, and
// its spellings; every routine, by its parameter letters.
#include <climits>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/blas/level2.hpp"
#include "tests/support/child.hpp"

namespace {

using namespace test;

using types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;

std::string reports;

void record(const char *name, const vox_int *code, int length) {
    reports += std::string(name, size_t(length)) + ':' + std::to_string(*code) + ' ';
}

// The parameters that can be bad, in their order, which is the order of the checks.
template <class T>
std::string checked(const routine<T> &r) {
    std::string letters;
    for (char letter : r.letters)
        if (!std::strchr("sbAXY", letter))
            letters += letter;
    return letters;
}

template <class T>
arguments<T> valid(const routine<T> &r, CBLAS_LAYOUT layout, vox_int m, vox_int n) {
    arguments<T> a;
    a.layout = layout;
    a.m = r.has('m') ? m : n;
    a.n = n;
    a.kl = r.has('l') ? 2 : 0;
    a.ku = r.has('k') ? 1 : 0;
    a.alpha = a.beta = vox::make<T>(2);
    a.lda = std::max(1, r.least_lda(a));
    return a;
}

template <class T>
void spoil(const routine<T> &r, char letter, int variant, arguments<T> &a) {
    if (is_option(letter)) // letters and C values of other options among them
        a.option(letter) = (letter == 't' ? "RU " : letter == 'u' ? "XNC" : "XT ")[variant];
    else if (letter == 'L')
        a.lda = variant == 0 ? r.least_lda(a) - 1 : -variant;
    else if (letter == 'i' || letter == 'j')
        a.integer(letter) = 0;
    else
        a.integer(letter) = variant == 0 ? -1 : INT_MIN + variant;
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
class Level2Arguments : public ::testing::Test {
  protected:
    void SetUp() override { vox_set_xerbla(record); }
    void TearDown() override { vox_set_xerbla(nullptr); }

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
};
TYPED_TEST_SUITE(Level2Arguments, types);

// All subsets of the parameters, bad at the same time.
TYPED_TEST(Level2Arguments, EachBadOneIsReportedWithItsNumberAndNothingIsTouched) {
    for (const routine<TypeParam> &r : routines<TypeParam>())
        for (const auto &[m, n] : {std::pair(3, 5), std::pair(5, 3), std::pair(0, 0)})
            for (CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor})
                for (bool c : {false, true}) {
                    if (c ? !r.c : layout == CblasRowMajor)
                        continue;
                    const std::string letters = checked(r);
                    for (unsigned subset = n ? 1 : 0; subset < 1u << letters.size(); ++subset) {
                        arguments<TypeParam> a = valid(r, layout, m, n);
                        std::string bad;
                        for (size_t i = 0; i < letters.size(); ++i)
                            if (subset >> i & 1) {
                                spoil(r, letters[i], int(subset + i) % 3, a);
                                bad += letters[i];
                            }
                        ASSERT_EQ(this->reported(c ? r.c : r.fortran, a),
                                  expected_reports(r, c, bad))
                            << r.name << ' ' << m << ' ' << n << " bad: " << bad;
                    }
                }
}

TYPED_TEST(Level2Arguments, ABadLayoutIsAllThatIsReported) {
    for (const routine<TypeParam> &r : routines<TypeParam>())
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
    for (const routine<T> &r : routines<T>()) {
        arguments<T> a = valid(r, CblasColMajor, 3, 2);
        a.a = operands.data();
        a.x = a.a + 100;
        a.y = a.a + 200;
        std::fprintf(stderr, "VOX_VERBOSE %s \n", call_line(r, a).c_str());
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
    std::fprintf(stderr, "VOX_VERBOSE DGEMV(T,2,3,");
}

TEST(Level2Verbose, EveryCallPrintsItsLine) {
    const child_result result = run_child(call_everything, {{"VOX_VERBOSE", "1"}});
    ASSERT_EQ(result.status, 0);
    std::istringstream expected(result.err);
    size_t at = 0;
    for (std::string line; std::getline(expected, line);) {
        const size_t found = result.out.find(line, at);
        EXPECT_NE(found, std::string::npos) << line;
        at = found == std::string::npos ? at : found + line.size();
    }
}

TYPED_TEST(Level2Arguments, TheThreeSpellingsAreOneRoutine) {
    for (const routine<TypeParam> &r : routines<TypeParam>()) {
        void *const lower = dlsym(RTLD_DEFAULT, r.name.c_str());
        EXPECT_NE(lower, nullptr) << r.name;
        EXPECT_EQ(dlsym(RTLD_DEFAULT, (r.name + "_").c_str()), lower) << r.name;
        EXPECT_EQ(dlsym(RTLD_DEFAULT, upper_case(r.name).c_str()), lower) << r.name;
    }
}

} // namespace

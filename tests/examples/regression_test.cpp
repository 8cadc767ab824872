// regression_test.cpp - the example that fits a linear model to data.
#include <cmath>
#include <cstdio>

#include "tests/examples/example.hpp"

namespace {

using namespace test;

class Regression : public Example {};

struct row {
    double certified, qr, digits, sure;
};

row row_of(const std::string &output, const std::string &name) {
    row r{NAN, NAN, NAN, NAN};
    const size_t at = output.find("\n" + name + " ");
    if (at != output.npos)
        std::sscanf(output.c_str() + at + 1 + name.size(), "%lf %lf %lf %lf", &r.certified, &r.qr,
                    &r.digits, &r.sure);
    return r;
}

TEST_F(Regression, FindsTheCertifiedCoefficients) {
    const child_result r = run({});
    EXPECT_EQ(r.status, 0) << r.err;
    const struct {
        const char *name;
        double certified; // NIST, Longley
        double sure;      // of the bound, in rational arithmetic
    } rows[] = {{"constant", -3482258.63459582, 9.3}, {"x1", 15.0618722713733, 8.1},
                {"x2", -0.0358191792925910, 8.8},     {"x3", -2.02022980381683, 9.3},
                {"x4", -1.03322686717359, 9.5},       {"x5", -0.0511041056535807, 8.2},
                {"x6", 1829.15146461355, 9.3},        {"deviation", 304.854073561965, 9.4}};
    for (const auto &c : rows) {
        const row found = row_of(r.out, c.name);
        EXPECT_EQ(found.certified, c.certified) << c.name;
        EXPECT_GE(found.digits, found.sure) << c.name;
        EXPECT_EQ(found.sure, c.sure) << c.name;
        // What is printed, to 15 digits, agrees with what is said of it, to one decimal.
        EXPECT_LE(std::abs(found.qr / c.certified - 1), std::pow(10, 0.06 - found.digits) + 6e-15)
            << c.name;
    }
}

TEST_F(Regression, FailsWhenQrIsWorseThanItsBound) {
    std::string study = contents_of(DATA "longley.csv");
    const std::string b1 = "15.0618722713733";
    const size_t at = study.find(b1);
    ASSERT_NE(at, study.npos);
    study.replace(at, b1.size(), "15.0618732713733"); // 7 digits are left, 8 are sure
    const child_result r = run({file("study", study)});
    expect_failure(r, 1, "", "QR is less accurate than its error bound");
}

TEST_F(Regression, FitsAnyStudyOfThisFormat) {
    // On a line but for one point; nothing is certified, the last line does not end.
    const child_result r = run(
        {file("study", "# b1 is the slope\r\n\r\nprice, size\r\n1,0\r\n3,1\r\n6,2\r\n7,3\r\n9,4")});
    EXPECT_EQ(r.status, 0) << r.err;
    double slope = 0;
    const size_t at = r.out.find("\nsize");
    ASSERT_NE(at, r.out.npos);
    EXPECT_EQ(std::sscanf(r.out.c_str() + at + 5, " - %lf", &slope), 1) << r.out;
    EXPECT_NEAR(slope, 2, 1e-13); // exact: 2; condition below 10, e = m n u
}

// x is 1 but for d = 2^-30 in one place: d^2, all that makes A^T A definite, is lost in rounding.
TEST_F(Regression, SaysThatTheNormalEquationsHaveNoSolution) {
    const child_result r =
        run({file("study", "y,x\n3,1.000000000931322574615478515625\n1,1\n2,1\n3,1\n")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("\nThe normal equations have no solution"), r.out.npos) << r.out;
}

TEST_F(Regression, SaysWhereAFileIsBad) {
    const struct {
        const char *text, *message;
    } bad[] = {
        {"", ":1: no names of columns"},
        {"# only comments\n\n", ":2: no names of columns"},
        {"1,2\n3,4\n", ":1: the first row must name the columns, the response first"},
        {"y\n1\n", ":1: a response and at least one predictor are needed"},
        {"y,x\n1,2\n\n1,2,3\n", ":4: 3 values for 2 columns"},
        {"y,x\n1,2\n1,2x\n", ":3: \"2x\" is not a number .*"},
        {"y,x\n1,nan\n", ":2: \"nan\" is not a number .*"},
        {"y,x\n1,1e400\n", ":2: \"1e400\" is not a number .*"},
        {"y,x\n1,\n", ":2: \"\" is not a number .*"},
        {"y,x\n1,2\n2,3\n", ":3: 2 observations are too few for 2 coefficients"},
        {"# b2 5.5\ny,x\n1,2\n2,3\n3,5\n", ":5: a coefficient b2 is certified, but the last is b1"},
        {"y,x\n1,0\n2,0\n3,0\n", ": the columns depend on one another"},
        {"y,x\n1e308,1e-300\n-1e308,0\n1e308,2e-300\n", ": no solution in the range .*"},
    };
    for (const auto &b : bad) {
        SCOPED_TRACE(b.text);
        expect_failure(run({file("study", b.text)}), 1, directory_ / "study", b.message);
    }
    expect_failure(run({directory_ / "none"}), 1, directory_ / "none",
                   ": No such file or directory");
    EXPECT_EQ(run({"--fast"}).status, 2);
    EXPECT_EQ(run({"a", "b"}).status, 2);
}

TEST_F(Regression, SaysWhichCodePathRuns) { expect_code_paths({}); }

} // namespace

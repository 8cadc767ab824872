// solve_test.cpp - the example that solves systems from files.
#include <cmath>
#include <cstdio>

#include "tests/examples/example.hpp"

namespace {

using namespace test;

class Solve : public Example {};

#define MM "%%MatrixMarket matrix "

// The solution's numbers in the order of the output file; without a right-hand side it is ones.
struct known_system {
    const char *matrix, *rhs, *method;
    std::vector<double> solution;
};

const known_system known_systems[] = {
    {"2, 1, 1\n4, 3,3\n8,7,9\n", "4\n10\n24", "LU", {1, 1, 1}},
    {"# A\r\n\r\n  4 ,\t+2\r\n# more\r\n \r\n2.0e0,5", "8\r\n12\r\n", "Cholesky", {1, 2}},
    {"2i,1\n4-4i,+0.5\n", "1+3i\n4.5-3.5i\n", "LU", {1, 0, 1, 1}},
    {"2,0\n0,4", "2+2i,4\n4,8i", "Cholesky", {1, 1, 1, 0, 2, 0, 0, 2}},
    {"4", nullptr, "Cholesky", {1}},
    {"1,2\n2,1", "5\n4", "LU, as Cholesky finds in row 2 that A is not positive definite", {1, 2}},
    {"0,1\n1,0", "2\n3", "LU, as the diagonal is not positive", {3, 2}},
    {MM "array real general\n% by columns\n\n2 2\n1\n3\n\n% more\n2\n4\n",
     MM "array integer general\n2 1\n-1\n-1\n",
     "LU",
     {1, -1}},
    {MM "array real symmetric\n3 3\n4\n2\n0\n5\n0\n1", "8\n12\n3", "Cholesky", {1, 2, 3}},
    {MM "array real skew-symmetric\n2 2\n1\n", "-2\n3\n", "LU", {3, 2}},
    {MM "array complex hermitian\n2 2\n1 0\n0 2\n1 0\n",
     "1-2i\n1+2i",
     "LU, as Cholesky finds in row 2 that A is not positive definite",
     {1, 0, 1, 0}},
    {"%%matrixmarket MATRIX Coordinate Integer Symmetric\n3 3 4\n3 3 1\n2 1 2\n%\n1 1 4\n2 2 5\n",
     "8\n12\n3",
     "Cholesky",
     {1, 2, 3}},
    {MM "coordinate complex hermitian\n2 2 3\n1 1 2 0\n2 1 0 1\n2 2 2 0\n",
     "2-1i\n2+1i\n",
     "Cholesky",
     {1, 0, 1, 0}},
    {MM "coordinate complex symmetric\n2 2 3\n1 1 1 0\n2 1 0 1\n2 2 2 0\n",
     "1+1i\n2+1i\n",
     "LU",
     {1, 0, 1, 0}},
    {MM "coordinate real skew-symmetric\n2 2 1\n2 1 1\n", "-2\n3", "LU", {3, 2}},
    {MM "coordinate pattern general\n3 3 4\n1 1\n1 2\n2 3\n3 1\n", "3\n3\n1", "LU", {1, 2, 3}},
    {MM "coordinate pattern symmetric\n2 2 2\n1 1\n2 1\n",
     "3\n1",
     "LU, as the diagonal is not positive",
     {1, 2}},
};

// The numbers behind the size in a file that solve wrote.
std::vector<double> numbers_of(const std::string &name) {
    std::ifstream in(name);
    std::string line;
    std::getline(in, line);
    std::getline(in, line);
    std::vector<double> result;
    for (double x; in >> x;)
        result.push_back(x);
    return result;
}

TEST_F(Solve, FindsKnownSolutionsByTheFittingMethod) {
    // n <= 3 and condition numbers below 60 of backward stable methods: error 2 gamma(3 n) times the latter.
    constexpr double tolerance = 2 * 9 * 60 * 0x1p-53;
    for (const known_system &s : known_systems) {
        SCOPED_TRACE(s.matrix);
        const std::string output = directory_ / "x.mtx";
        std::vector<std::string> arguments = {file("a", s.matrix), "--output", output};
        if (s.rhs)
            arguments.push_back(file("b", s.rhs));
        const child_result r = run(arguments);
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(field(r.out, "method"), s.method);
        const std::vector<double> x = numbers_of(output);
        ASSERT_EQ(x.size(), s.solution.size()) << contents_of(output);
        for (size_t i = 0; i < x.size(); ++i)
            EXPECT_NEAR(x[i], s.solution[i], tolerance);
        // What was written can be read: as right-hand sides, once more.
        EXPECT_EQ(run({arguments[0], output}).status, 0);
    }
}

TEST_F(Solve, ReportsSmallErrorsOfTheBundledSystems) {
    const struct {
        const char *name, *method;
    } bundled[] = {{"poisson.mtx", "Cholesky"}, {"spiral.mtx", "LU"}};
    for (const auto &b : bundled) {
        SCOPED_TRACE(b.name);
        const child_result r = run({std::string(DATA) + b.name});
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(field(r.out, "method"), b.method);
        double normwise = 1, forward = 1, bound = 0;
        std::sscanf(field(r.out, "backward error").c_str(), "%lf", &normwise);
        EXPECT_LE(normwise, 30 * 0x1p-53); // the reference testers' threshold
        std::sscanf(field(r.out, "forward error").c_str(), "%lf, estimated to be at most %lf",
                    &forward, &bound);
        EXPECT_LE(forward, bound);
    }
    // 8 times the largest row sum of the inverse, 32.306 from its eigenvectors.
    EXPECT_EQ(field(run({DATA "poisson.mtx"}).out, "condition"), "2.6e+02");
}

// x = (-fl(1/3), 0) has the residual (2^-54, 0); |A| = 300, |A^-1| = 1/3.
TEST_F(Solve, MeasuresErrors) {
    const std::string out = run({file("a", "-3,0\n0,-300\n"), file("b", "1\n0\n")}).out;
    EXPECT_EQ(field(out, "condition"), "1.0e+02");
    EXPECT_EQ(field(out, "residual"), "5.6e-17");
    EXPECT_EQ(field(out, "backward error"), "5.5e-19 normwise, 2.8e-17 componentwise");
    EXPECT_EQ(field(out, "forward error"), "estimated to be at most 1.1e-16");
}

TEST_F(Solve, SaysThatAMatrixIsSingularOrNearlySo) {
    expect_failure(run({file("a", "1,2\n2,4\n")}), 1, directory_ / "a",
                   ": the matrix is singular: elimination finds no pivot in column 2");
    expect_failure(run({file("a", MM "coordinate real general\n1 1 0\n")}), 1, directory_ / "a",
                   ": the matrix is singular: elimination finds no pivot in column 1");
    const child_result near = run({file("a", "1,1\n1,1.0000000000000002\n")});
    EXPECT_EQ(near.status, 0) << near.err;
    EXPECT_TRUE(matches(field(near.out, "condition"), "[0-9.e+]+, singular to working precision"));
    EXPECT_TRUE(matches(field(near.out, "forward error"), "[0-9.e+-]+, no digit is certain"));
}

// Messages behind the file's name, as patterns.
struct bad_file {
    const char *text, *message;
};

const bad_file bad_files[] = {
    {"", ":1: the file is empty"},
    {"\n\n# nothing\n", ":3: no matrix in this file"},
    {"1,2\n3\n", ":2: a row of 1 numbers after rows of 2"},
    {"1,2\n\n3,x\n", ":3: \"x\" is not a number in the range of double precision"},
    {"1,\n", ":1: \"\" is not a number .*"},
    {"nan", ":1: \"nan\" is not .*"},
    {"-inf", ":1: \"-inf\" is not .*"},
    {"1e400", ":1: \"1e400\" is not .*"},
    {"1-2", ":1: \"1-2\" is not .*"},
    {"1-nani", ":1: \"1-nani\" is not .*"},
    {"\x01\xff", ":1: \"[?][?]\" is not .*"},
    {"1234567890,1234567890x1234567890x1234567890x1234567890",
     ":1: \"1234567890x1234567890x1234567890x1234567\\.\\.\\.\" is not .*"},
    {"1,2,3\n4,5,6\n", ":1: the matrix has 2 rows and 3 columns, a square one is needed"},
    {MM "array real\n1 1\n1\n", ":1: the header has 4 words .*"},
    {MM "array real banded\n", ":1: \"banded\" is not a kind of matrix .*"},
    {MM "array pattern general\n", ":1: an array has no pattern"},
    {MM "array real hermitian\n", ":1: a Hermitian matrix is complex"},
    {MM "array real general\n% no size\n", ":2: the file ends before the size of the matrix"},
    {MM "array real general\n2 2 4\n", ":2: rows and columns are needed"},
    {MM "coordinate real general\n2 2\n",
     ":2: rows, columns and the number of elements are needed"},
    {MM "array real general\n0 2\n", ":2: the number of rows \"0\" is not from 1 to 2147483647"},
    {MM "array real general\n2 99999999999\n",
     ":2: the number of columns \"99999999999\" is not from 1 .*"},
    {MM "array real general\n2.5 2\n", ":2: the number of rows \"2.5\" is not a whole number"},
    {MM "coordinate real general\n2 2 -1\n", ":2: the number of elements \"-1\" is not from 0 .*"},
    {MM "array real symmetric\n2 3\n", ":2: a matrix of 2 x 3 has no symmetry"},
    {MM "array real general\n2 2\n1\n2\n3", ":5: the file ends after 3 of 4 elements"},
    {MM "array complex hermitian\n2 2\n1 0\n1 1\n", ":4: the file ends after 2 of 3 elements"},
    {MM "array real general\n2 2\n1\n2\n3\n4\n5\n", ":7: more elements than the size says"},
    {MM "array real general\n2000000000 2000000000\n1\n",
     ":3: the file ends after 1 of 4000000000000000000 elements"},
    {MM "array complex general\n1 1\n1\n", ":3: 1 words instead of 2"},
    {MM "array complex hermitian\n1 1\n1 1\n",
     ":3: a diagonal element of a Hermitian matrix is real"},
    {MM "coordinate real general\n2 2 1\n1 1 1 1\n", ":3: 4 words instead of 3"},
    {MM "coordinate real general\n2 2 1\n1\n", ":3: a row, a column and a value are needed"},
    {MM "coordinate pattern general\n2 2 1\n1 1 1\n", ":3: 3 words instead of 2"},
    {MM "coordinate real general\n2 2 2\n1 1 1\n", ":3: the file ends after 1 of 2 elements"},
    {MM "coordinate real general\n2 2 1\n1 1 1\n\n2 2 1\n", ":5: more elements than the size says"},
    {MM "coordinate real general\n2 2 1\n1 3 1\n", ":3: column \"3\" is not from 1 to 2"},
    {MM "coordinate real general\n2 2 1\n0 1 1\n", ":3: row \"0\" is not from 1 to 2"},
    {MM "coordinate real general\n2 2 1\n1 1 infinity\n", ":3: \"infinity\" is not a number .*"},
    {MM "coordinate real general\n2 2 3\n2 1 1\n1 1 1\n2 1 3\n",
     ":5: row 2, column 1 again, after line 3"},
    {MM "coordinate real symmetric\n2 2 1\n1 2 1\n", ":3: an element above the diagonal, .*"},
    {MM "coordinate real skew-symmetric\n2 2 1\n1 1 1\n",
     ":3: an element on the diagonal of a skew.*"},
    {MM "coordinate real general\n2000000000 2000000000 1\n1 1 1\n",
     ":2: a dense matrix of 2000000000 x 2000000000 takes [0-9.]+ GiB .*"},
    {"1e308,1e308\n1,2\n", ": a row's sum is out of the range of double precision"},
};

TEST_F(Solve, SaysWhereAFileIsBad) {
    for (const bad_file &b : bad_files) {
        SCOPED_TRACE(b.text);
        expect_failure(run({file("a", b.text)}), 1, directory_ / "a", b.message);
    }
    const std::string a = file("a", "1e-300,0\n0,1\n");
    expect_failure(run({a, file("b", "# one\n1\n")}), 1, directory_ / "b",
                   ":2: 1 rows for a matrix of 2");
    expect_failure(run({a, file("b", "1\n1;2\n")}), 1, directory_ / "b", ":2: \"1;2\" is not .*");
    expect_failure(run({a, file("b", "1e300\n1\n")}), 1, a,
                   ": no solution in the range of double precision");
    expect_failure(run({directory_ / "none"}), 1, directory_ / "none",
                   ": No such file or directory");
    expect_failure(run({directory_.path()}), 1, directory_.path(), ": .+");
    expect_failure(run({"--output", "/dev/full", a}), 1, "/dev/full", ": No space left on device");
}

TEST_F(Solve, AnswersWrongArguments) {
    const std::string a = file("a", "1");
    for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
             {}, {"--out-put", a}, {"--output"}, {"-x", a}, {a, a, a}})
        expect_failure(run(arguments), 2, "", ".+");
    const child_result help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.substr(0, 12), "usage: solve");
}

TEST_F(Solve, SaysWhichCodePathRuns) { expect_code_paths({file("a", "1")}); }

} // namespace

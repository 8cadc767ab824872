// matrix_file.cpp - see matrix_file.hpp. Memory grows with what has been read, not with what a file claims: the
// dense matrix is made when the file has turned out to be complete.
#include "matrix_file.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <unistd.h>

#include "text_file.hpp"

namespace {

using complex = std::complex<double>;

enum class symmetry { general, symmetric, skew, hermitian };

struct matrix_header {
    bool coordinate;
    int numbers; // of an element: 1, 2 if it is complex, 0 for a pattern
    symmetry kind;
};

struct entry {
    int row, column;
    complex value;
    long line;
};

std::string times(int rows, int columns) {
    return std::to_string(rows) + " x " + std::to_string(columns);
}

std::string lower_case(std::string_view text) {
    std::string result(text);
    for (char &c : result)
        if (c >= 'A' && c <= 'Z')
            c += 'a' - 'A';
    return result;
}

// The number of the word in the list.
template <size_t N>
size_t choice(const text_file &file, std::string_view word, const char *const (&list)[N]) {
    const auto found = std::find(list, list + N, lower_case(word));
    if (found == list + N)
        file.fail(quoted(word) + " is not a kind of matrix that is read here");
    return found - list;
}

matrix_header read_header(const text_file &file) {
    const auto word = words(file.line());
    if (word.size() != 5)
        file.fail("the header has " + std::to_string(word.size()) +
                  " words instead of 5, as %%MatrixMarket matrix array real general");
    choice(file, word[1], {"matrix"});
    const bool coordinate = choice(file, word[2], {"array", "coordinate"});
    const int numbers[] = {1, 1, 2, 0};
    const symmetry kinds[] = {symmetry::general, symmetry::symmetric, symmetry::skew,
                              symmetry::hermitian};
    const matrix_header header = {
        coordinate, numbers[choice(file, word[3], {"real", "integer", "complex", "pattern"})],
        kinds[choice(file, word[4], {"general", "symmetric", "skew-symmetric", "hermitian"})]};
    if (header.numbers == 0 && !coordinate)
        file.fail("an array has no pattern");
    if (header.kind == symmetry::hermitian && header.numbers != 2)
        file.fail("a Hermitian matrix is complex");
    return header;
}

// The next line that is neither blank nor a comment.
bool next_entry(text_file &file, char comment) {
    while (file.next())
        if (!file.blank() && file.line()[0] != comment)
            return true;
    return false;
}

// A matrix and its factors must fit into this machine's memory.
void allocate(matrix_file &m, const text_file &file, bool is_complex) {
    const double bytes = 2.0 * sizeof(double) * (is_complex ? 2 : 1) * m.rows * m.columns;
    const double memory = double(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE);
    if (bytes > memory) {
        char text[100];
        std::snprintf(text, sizeof text, " takes %.1f GiB with its factors, this machine has %.1f",
                      bytes / 0x1p30, memory / 0x1p30);
        file.fail_at(m.size_line, "a dense matrix of " + times(m.rows, m.columns) + text);
    }
    m.real.resize(size_t(m.rows) * m.columns);
    if (is_complex)
        m.imaginary.resize(m.real.size());
}

void store(matrix_file &m, size_t i, size_t j, complex value) {
    m.real[i + j * m.rows] = value.real();
    if (m.is_complex())
        m.imaginary[i + j * m.rows] = value.imag();
}

// The element and its mirror image, of which the file holds one.
void store_both(matrix_file &m, symmetry kind, size_t i, size_t j, complex value) {
    store(m, i, j, value);
    if (kind != symmetry::general && i != j)
        store(m, j, i,
              kind == symmetry::skew        ? -value
              : kind == symmetry::hermitian ? std::conj(value)
                                            : value);
}

// The words of a line from number `first` to its end, as many as an element has numbers.
complex read_value(const text_file &file, size_t numbers, const std::vector<std::string_view> &word,
                   size_t first) {
    if (word.size() != first + numbers)
        file.fail(std::to_string(word.size()) + " words instead of " +
                  std::to_string(first + numbers));
    if (numbers == 0)
        return 1;
    return {file.number(word[first]), numbers == 2 ? file.number(word[first + 1]) : 0.0};
}

void check_symmetry(const text_file &file, symmetry kind, int i, int j, complex value) {
    if (kind == symmetry::general)
        return;
    if (i < j)
        file.fail("an element above the diagonal, in a file that holds the lower triangle");
    if (i == j && kind == symmetry::skew)
        file.fail("an element on the diagonal of a skew-symmetric matrix");
    if (i == j && kind == symmetry::hermitian && value.imag() != 0)
        file.fail("a diagonal element of a Hermitian matrix is real");
}

[[noreturn]] void fail_short(const text_file &file, size_t got, double wanted) {
    char text[100];
    std::snprintf(text, sizeof text, "the file ends after %zu of %.0f elements", got, wanted);
    file.fail(text);
}

void read_array(text_file &file, const matrix_header &header, matrix_file &m) {
    const symmetry kind = header.kind;
    const double n = m.rows, count = kind == symmetry::general ? n * m.columns
                                     : kind == symmetry::skew  ? n * (n - 1) / 2
                                                               : n * (n + 1) / 2;
    std::vector<complex> values; // in the order of the file
    const int below = kind == symmetry::skew ? 1 : 0;
    auto first_row = [&](int column) { return kind == symmetry::general ? 0 : column + below; };
    int i = first_row(0), j = 0;
    while (next_entry(file, '%')) {
        if (values.size() >= count)
            file.fail("more elements than the size says");
        const complex value = read_value(file, header.numbers, words(file.line()), 0);
        check_symmetry(file, kind, i, j, value);
        values.push_back(value);
        if (++i == m.rows)
            i = first_row(++j);
    }
    if (values.size() < count)
        fail_short(file, values.size(), count);

    allocate(m, file, header.numbers == 2);
    auto value = values.begin();
    for (j = 0; j < m.columns; ++j)
        for (i = first_row(j); i < m.rows; ++i)
            store_both(m, kind, i, j, *value++);
}

void read_coordinates(text_file &file, const matrix_header &header, matrix_file &m, double count) {
    std::vector<entry> entries;
    while (next_entry(file, '%')) {
        if (entries.size() >= count)
            file.fail("more elements than the size says");
        const auto word = words(file.line());
        if (word.size() < 2)
            file.fail("a row, a column and a value are needed");
        const int i = file.integer(word[0], 1, m.rows, "row") - 1;
        const int j = file.integer(word[1], 1, m.columns, "column") - 1;
        const complex value = read_value(file, header.numbers, word, 2);
        check_symmetry(file, header.kind, i, j, value);
        entries.push_back({i, j, value, file.line_number()});
    }
    if (entries.size() < count)
        fail_short(file, entries.size(), count);

    auto by_place = [](const entry &a, const entry &b) {
        return std::tie(a.column, a.row, a.line) < std::tie(b.column, b.row, b.line);
    };
    std::sort(entries.begin(), entries.end(), by_place);
    for (size_t k = 1; k < entries.size(); ++k) {
        const entry &a = entries[k - 1], &b = entries[k];
        if (a.row == b.row && a.column == b.column)
            file.fail_at(b.line, "row " + std::to_string(b.row + 1) + ", column " +
                                     std::to_string(b.column + 1) + " again, after line " +
                                     std::to_string(a.line));
    }
    allocate(m, file, header.numbers == 2);
    for (const entry &e : entries)
        store_both(m, header.kind, e.row, e.column, e.value);
}

void read_matrix_market(text_file &file, matrix_file &m) {
    const matrix_header header = read_header(file);
    if (!next_entry(file, '%'))
        file.fail("the file ends before the size of the matrix");
    const auto size = words(file.line());
    if (size.size() != (header.coordinate ? 3 : 2))
        file.fail(header.coordinate ? "rows, columns and the number of elements are needed"
                                    : "rows and columns are needed");
    m.size_line = file.line_number();
    m.rows = file.integer(size[0], 1, INT_MAX, "the number of rows");
    m.columns = file.integer(size[1], 1, INT_MAX, "the number of columns");
    if (header.kind != symmetry::general && m.rows != m.columns)
        file.fail("a matrix of " + times(m.rows, m.columns) + " has no symmetry");
    if (!header.coordinate)
        read_array(file, header, m);
    else
        read_coordinates(file, header, m,
                         file.integer(size[2], 0, INT_MAX, "the number of elements"));
}

// 1.5, 2i or 1.5-2i.
complex complex_number(const text_file &file, std::string_view text) {
    double a = 0, b = 0;
    const std::string_view rest = take_number(text, a);
    if (rest.data() && rest.empty())
        return a;
    if (rest == "i")
        return {0, a};
    if (rest.starts_with('+') || rest.starts_with('-'))
        if (take_number(rest, b) == "i")
            return {a, b};
    file.fail(quoted(text) + " is not a number in the range of double precision");
}

void read_csv(text_file &file, matrix_file &m) {
    std::vector<complex> values; // by rows
    bool is_complex = false;
    do {
        if (file.blank() || file.line()[0] == '#')
            continue;
        const auto fields = comma_separated(file.line());
        if (m.rows == 0) {
            m.columns = int(std::min(fields.size(), size_t(INT_MAX)));
            m.size_line = file.line_number();
        }
        if (fields.size() != size_t(m.columns))
            file.fail("a row of " + std::to_string(fields.size()) + " numbers after rows of " +
                      std::to_string(m.columns));
        for (const std::string_view f : fields) {
            values.push_back(complex_number(file, f));
            is_complex |= values.back().imag() != 0;
        }
        if (++m.rows == INT_MAX)
            file.fail("too many rows");
    } while (file.next());
    if (m.rows == 0)
        file.fail("no matrix in this file");
    allocate(m, file, is_complex);
    auto value = values.begin();
    for (int i = 0; i < m.rows; ++i)
        for (int j = 0; j < m.columns; ++j)
            store(m, i, j, *value++);
}

void print_element(std::FILE *file, double x) { std::fprintf(file, "%.17g\n", x); }
void print_element(std::FILE *file, complex x) {
    std::fprintf(file, "%.17g %.17g\n", x.real(), x.imag());
}

} // namespace

matrix_file read_matrix(const std::string &name) {
    text_file file(name);
    matrix_file m;
    m.name = name;
    if (!file.next())
        file.fail("the file is empty");
    if (lower_case(file.line()).starts_with("%%matrixmarket"))
        read_matrix_market(file, m);
    else
        read_csv(file, m);
    return m;
}

template <class T>
void write_matrix(const std::string &name, int rows, int columns, const std::vector<T> &elements) {
    std::FILE *const file = std::fopen(name.c_str(), "w");
    if (!file)
        throw input_error(name + ": " + std::strerror(errno));
    std::fprintf(file, "%%%%MatrixMarket matrix array %s general\n%d %d\n",
                 std::is_same_v<T, double> ? "real" : "complex", rows, columns);
    for (const T &x : elements)
        print_element(file, x);
    const bool written = !std::ferror(file);
    if (std::fclose(file) != 0 || !written)
        throw input_error(name + ": " + std::strerror(errno));
}

template void write_matrix(const std::string &, int, int, const std::vector<double> &);
template void write_matrix(const std::string &, int, int, const std::vector<complex> &);

// csv.hpp - the tables in tests/rng/data: below comments (#) a line of column names, then rows of cells, all
// with commas.
#pragma once

#include <cstdint>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

struct csv_row {
    std::map<std::string, std::string> cells; // by column

    const std::string &operator[](const char *column) const { return cells.at(column); }
    uint64_t number(const char *column, int base = 10) const {
        return std::stoull(cells.at(column), nullptr, base);
    }
    // All numbers in a cell, between blanks.
    template <class T>
    std::vector<T> numbers(const char *column) const {
        std::istringstream text(cells.at(column));
        std::vector<T> all;
        for (T each; text >> each;)
            all.push_back(each);
        return all;
    }
};

inline std::vector<csv_row> read_csv(const std::string &name) {
    std::ifstream file(RNG_TEST_DATA + name);
    std::vector<std::string> columns;
    std::vector<csv_row> rows;
    for (std::string line, cell; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        std::vector<std::string> cells;
        for (std::istringstream text(line); std::getline(text, cell, ',');)
            cells.push_back(cell);
        if (columns.empty()) {
            columns = cells;
            continue;
        }
        rows.emplace_back();
        for (size_t i = 0; i < cells.size(); ++i)
            rows.back().cells[columns.at(i)] = cells[i];
    }
    if (rows.empty())
        throw std::runtime_error("no rows in " + name);
    return rows;
}

} // namespace test

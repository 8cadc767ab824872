// csv.hpp - the tables in tests/rng/data: below comments (#) a line of column names, then rows of cells, all
// with commas.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

// The numbers in a text, whatever stands between them.
inline std::vector<uint64_t> numbers_in(const std::string &text, int base = 10) {
    const std::string digits = base == 16 ? "0123456789abcdefABCDEF" : "0123456789";
    std::vector<uint64_t> found;
    for (size_t at = 0; (at = text.find_first_of(digits, at)) != text.npos;
         at = text.find_first_not_of(digits, at))
        found.push_back(std::stoull(text.substr(at), nullptr, base));
    return found;
}

using csv_cells = std::vector<std::string>;

class csv_row {
  public:
    csv_row(std::shared_ptr<const csv_cells> names, csv_cells cells)
        : names_(std::move(names)), cells_(std::move(cells)) {
        if (names_->size() != cells_.size())
            throw std::runtime_error("a row of another length: " + cells_[0]);
    }

    const std::string &operator[](const std::string &column) const {
        for (size_t i = 0; i < names_->size(); ++i)
            if ((*names_)[i] == column)
                return cells_[i];
        throw std::runtime_error("no column " + column);
    }
    uint64_t number(const std::string &column, int base = 10) const {
        return std::stoull((*this)[column], nullptr, base);
    }
    std::vector<uint64_t> numbers(const std::string &column, int base = 10) const {
        return numbers_in((*this)[column], base);
    }

  private:
    std::shared_ptr<const csv_cells> names_;
    csv_cells cells_;
};

inline csv_cells split_cells(const std::string &line) {
    csv_cells cells;
    std::istringstream text(line);
    for (std::string cell; std::getline(text, cell, ',');)
        cells.push_back(cell);
    if (line.empty() || line.back() == ',')
        cells.emplace_back();
    return cells;
}

inline std::vector<csv_row> read_csv(const std::string &name) {
    std::ifstream file(RNG_TEST_DATA + name);
    std::shared_ptr<const csv_cells> names;
    std::vector<csv_row> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        if (names)
            rows.emplace_back(names, split_cells(line));
        else
            names = std::make_shared<const csv_cells>(split_cells(line));
    }
    if (rows.empty())
        throw std::runtime_error("no rows in " + name);
    return rows;
}

} // namespace test

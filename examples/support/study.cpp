// study.cpp - see study.hpp.
#include "study.hpp"

#include <algorithm>
#include <charconv>
#include <climits>

#include "text_file.hpp"

namespace {

// The number of a coefficient's name, "b" and the number; -1 for another word.
int coefficient(std::string_view word) {
    int k = -1;
    if (word.starts_with('b')) {
        const auto [end, error] = std::from_chars(word.data() + 1, word.data() + word.size(), k);
        if (error != std::errc() || end != word.data() + word.size() || k > 1000000)
            k = -1;
    }
    return k;
}

void read_certified(std::string_view comment, study &s) {
    std::string_view before;
    for (std::string_view word : words(comment)) {
        double value;
        const std::string_view rest = take_number(word, value);
        if (rest.data() && rest.find_first_not_of(",;.") == rest.npos) {
            if (before == "deviation")
                s.certified_deviation = value;
            if (const int k = coefficient(before); k >= 0) {
                s.certified.resize(std::max(s.certified.size(), size_t(k) + 1), unknown);
                s.certified[k] = value;
            }
        }
        before = word;
    }
}

} // namespace

study read_study(const std::string &name) {
    text_file file(name);
    study s;
    s.file = name;
    while (file.next()) {
        if (file.blank())
            continue;
        if (file.line().starts_with('#')) {
            read_certified(file.line(), s);
            continue;
        }
        const auto fields = comma_separated(file.line());
        if (s.names.empty()) {
            double number;
            if (take_number(fields[0], number).data())
                file.fail("the first row must name the columns, the response first");
            if (fields.size() < 2)
                file.fail("a response and at least one predictor are needed");
            s.names.assign(fields.begin(), fields.end());
            s.n = int(fields.size());
            continue;
        }
        if (fields.size() != s.names.size())
            file.fail(std::to_string(fields.size()) + " values for " +
                      std::to_string(s.names.size()) + " columns");
        s.y.push_back(file.number(fields[0]));
        s.A.push_back(1);
        for (size_t j = 1; j < fields.size(); ++j)
            s.A.push_back(file.number(fields[j]));
        if (++s.m == INT_MAX)
            file.fail("too many observations");
    }
    if (s.names.empty())
        file.fail("no names of columns");
    if (s.m <= s.n)
        file.fail(std::to_string(s.m) + " observations are too few for " + std::to_string(s.n) +
                  " coefficients");
    if (s.certified.size() > size_t(s.n))
        file.fail("a coefficient b" + std::to_string(s.certified.size() - 1) +
                  " is certified, but the last is b" + std::to_string(s.n - 1));
    s.certified.resize(s.n, unknown);
    return s;
}

// text_file.cpp - see text_file.hpp. Numbers have a decimal point in every locale.
#include "text_file.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr char blanks[] = " \t";

std::string_view trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == text.npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

// from_chars knows no plus sign.
std::string_view without_plus(std::string_view text) {
    return text.size() > 1 && text[0] == '+' && text[1] != '-' ? text.substr(1) : text;
}

} // namespace

text_file::text_file(const std::string &name) : name_(name), stream_(name, std::ios::binary) {
    if (!stream_)
        throw input_error(name + ": " + std::strerror(errno));
}

bool text_file::next() {
    if (!std::getline(stream_, line_)) {
        if (stream_.bad())
            throw input_error(name_ + ": cannot be read");
        return false;
    }
    ++line_number_;
    if (!line_.empty() && line_.back() == '\r')
        line_.pop_back();
    return true;
}

bool text_file::blank() const { return line_.find_first_not_of(blanks) == line_.npos; }

double text_file::number(std::string_view text) const {
    double value = 0;
    const std::string_view rest = take_number(text, value);
    if (!rest.data() || !rest.empty())
        fail(quoted(text) + " is not a number in the range of double precision");
    return value;
}

int text_file::integer(std::string_view text, int low, int high, const char *what) const {
    const std::string_view digits = without_plus(text);
    int value = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    if (error == std::errc::invalid_argument || end != digits.end())
        fail(std::string(what) + ' ' + quoted(text) + " is not a whole number");
    if (error != std::errc() || value < low || value > high)
        fail(std::string(what) + ' ' + quoted(text) + " is not from " + std::to_string(low) +
             " to " + std::to_string(high));
    return value;
}

void text_file::fail(const std::string &what) const { fail_at(std::max(line_number_, 1L), what); }

void text_file::fail_at(long line_number, const std::string &what) const {
    throw input_error(name_ + ':' + std::to_string(line_number) + ": " + what);
}

std::vector<std::string_view> comma_separated(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const size_t comma = line.find(',');
        fields.push_back(trimmed(line.substr(0, comma)));
        if (comma == line.npos)
            return fields;
        line.remove_prefix(comma + 1);
    }
}

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> result;
    while (!(line = trimmed(line)).empty()) {
        const size_t end = std::min(line.find_first_of(blanks), line.size());
        result.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
    return result;
}

std::string_view take_number(std::string_view text, double &value) {
    const std::string_view digits = without_plus(text);
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    if (error != std::errc() || !std::isfinite(value))
        return {};
    return digits.substr(end - digits.begin());
}

std::string quoted(std::string_view text) {
    constexpr size_t longest = 40;
    std::string result = "\"";
    for (const char c : text.substr(0, longest))
        result += c >= ' ' && c <= '~' ? c : '?';
    return result + (text.size() > longest ? "...\"" : "\"");
}

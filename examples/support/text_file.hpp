// text_file.hpp - a text file read line by line, whose complaints say where: "longley.csv:7: ...".
#pragma once

#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// What is wrong with the user's input, ready to be printed.
struct input_error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class text_file {
  public:
    explicit text_file(const std::string &name);

    // Goes to the next line, without its line end (LF or CR LF); false behind the last one.
    bool next();
    std::string_view line() const { return line_; }
    bool blank() const; // nothing but blanks
    long line_number() const { return line_number_; }
    const std::string &name() const { return name_; }

    // A finite number; a whole number from low to high. what: its name in the message.
    double number(std::string_view text) const;
    int integer(std::string_view text, int low, int high, const char *what) const;

    // Throws input_error for the current line.
    [[noreturn]] void fail(const std::string &what) const;
    [[noreturn]] void fail_at(long line_number, const std::string &what) const;

  private:
    std::string name_, line_;
    std::ifstream stream_;
    long line_number_ = 0;
};

// Fields between commas, without the blanks around them; words between blanks.
std::vector<std::string_view> comma_separated(std::string_view line);
std::vector<std::string_view> words(std::string_view line);

// The beginning of a number: stores it and returns what follows; a null view if there is no number or it is
// out of range.
std::string_view take_number(std::string_view text, double &value);

// The text in quotes, shortened, without characters that a terminal would not show.
std::string quoted(std::string_view text);

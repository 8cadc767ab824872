// environment.hpp - the one place that reads environment variables.
//
// Every setting is read at the first call that needs it, once, and bounded. A value longer than its
// bound is ignored as if the variable were missing: cut short it could turn into another valid
// word.
#pragma once

#include <stddef.h>

namespace vox {

enum class env_state { missing, present, too_long };

// Copies the variable's value, of at most `max` characters, into text[0 .. max] with its
// terminator; text is empty unless the state is `present`.
env_state read_environment(const char *name, char *text, size_t max);

template <size_t Max>
struct env_value {
    env_state state;
    char text[Max + 1];

    explicit env_value(const char *name) : state(read_environment(name, text, Max)) {}
    bool present() const { return state == env_state::present; }
};

// For the service that must steer the C library through its variables (serv/catalogue).
void set_environment(const char *name, const char *value);

// Non-empty and decimal digits throughout: stores the number, INT_MAX when it is larger than that.
bool parse_digits(const char *text, int *value);

// One integer and nothing after it; leading blanks and a sign are allowed. base 0: also 0x and 0
// forms. Numbers outside the range of long long are held at its ends.
bool parse_integer(const char *text, int base, long long *value);

} // namespace vox

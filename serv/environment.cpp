// environment.cpp - see environment.hpp.
#include "serv/environment.hpp"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include "serv/lock.hpp"

vox::env_state vox::read_environment(const char *name, char *text, size_t max) {
    text[0] = '\0';
    scoped_lock guard(lock_id::environment);
    const char *value = getenv(name);
    if (!value)
        return env_state::missing;
    const size_t length = strnlen(value, max + 1);
    if (length > max)
        return env_state::too_long;
    memcpy(text, value, length);
    text[length] = '\0';
    return env_state::present;
}

void vox::set_environment(const char *name, const char *value) {
    scoped_lock guard(lock_id::environment);
    setenv(name, value, 1);
}

bool vox::parse_digits(const char *text, int *value) {
    if (!*text)
        return false;
    long long number = 0;
    for (const char *p = text; *p; ++p) {
        if (*p < '0' || *p > '9')
            return false;
        if (number <= INT_MAX)
            number = 10 * number + (*p - '0');
    }
    *value = number > INT_MAX ? INT_MAX : int(number);
    return true;
}

bool vox::parse_integer(const char *text, int base, long long *value) {
    char *end = nullptr;
    const long long number = strtoll(text, &end, base);
    if (end == text || *end)
        return false;
    *value = number;
    return true;
}

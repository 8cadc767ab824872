// matches.hpp - whether a whole line is as an extended regular expression says.
#pragma once

#include <cstdlib>
#include <regex.h>
#include <string>

namespace test {

inline bool matches(const std::string &line, const std::string &pattern) {
    regex_t compiled;
    if (regcomp(&compiled, ("^" + pattern + "$").c_str(), REG_EXTENDED | REG_NOSUB) != 0)
        std::abort();
    const bool result = regexec(&compiled, line.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return result;
}

} // namespace test

// vox-info.cpp - prints what the library found out about this machine and process, and why it runs
// as it does: the first thing to look at when something is slow.
//
//   vox-info          as text
//   vox-info --json   as one JSON object: sections, then keys, all values strings
#include <cstdio>
#include <cstring>
#include <string>

#include "vox/service.h"

namespace {

struct printer {
    bool json = false;
    std::string section;
    bool first_key = true;
};

std::string quoted(const char *text) {
    std::string result = "\"";
    for (const char *p = text; *p; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += *p;
        } else if (c < 0x20) {
            char escape[7];
            std::snprintf(escape, sizeof escape, "\\u%04x", c);
            result += escape;
        } else {
            result += *p;
        }
    }
    return result + '"';
}

void print_text(printer &p, const char *section, const char *key, const char *value) {
    if (p.section != section)
        std::printf("%s%s\n", p.section.empty() ? "" : "\n", section);
    std::printf("  %-23s %s\n", key, value);
}

void print_json(printer &p, const char *section, const char *key, const char *value) {
    if (p.section != section) {
        std::printf("%s\n  %s: {", p.section.empty() ? "{" : "\n  },", quoted(section).c_str());
        p.first_key = true;
    }
    std::printf("%s\n    %s: %s", p.first_key ? "" : ",", quoted(key).c_str(),
                quoted(value).c_str());
    p.first_key = false;
}

void print_fact(void *context, const char *section, const char *key, const char *value) {
    printer &p = *static_cast<printer *>(context);
    (p.json ? print_json : print_text)(p, section, key, value);
    p.section = section;
}

} // namespace

int main(int argc, char **argv) {
    printer p;
    if (argc == 2 && std::strcmp(argv[1], "--json") == 0) {
        p.json = true;
    } else if (argc != 1) {
        std::fprintf(stderr, "usage: vox-info [--json]\n");
        return 2;
    }
    vox_explain(print_fact, &p);
    if (p.json)
        std::printf("\n  }\n}\n");
    return 0;
}

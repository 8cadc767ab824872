// catalogue.cpp - see catalogue.hpp.
//
// The catalogue is opened at most once per process, without a lock: the thread that takes the
// first-use flag opens it, and others that come meanwhile use the built-in texts.
#include "serv/catalogue.hpp"

#include <atomic>
#include <nl_types.h>
#include <string.h>

#include "serv/environment.hpp"

namespace {

struct entry {
    int number;
    char text[120]; // an array, not a pointer, so that loading the library relocates nothing
};

// clang-format off
constexpr entry entries[] = {
    {0, "\n"},
    {1, "Quarn VOX FATAL ERROR: Cannot load %s."},
    {2, "Quarn VOX FATAL ERROR: Cannot load %s or %s."},
    {3, "Quarn VOX FATAL ERROR: Error on loading function %s."},
    {4, "Quarn VOX WARNING: CPU type %d is not suitable for this processor."},
    {5, "Quarn VOX WARNING: Library %s (VOX type %d) is not suitable for this processor (VOX type %d)."},
    {6, "Quarn VOX ERROR: Parameter %d was incorrect on entry to %s."},
    {7, "Quarn VOX INTERNAL ERROR: Condition %d detected in function %s."},
    {8, "Quarn VOX INTERNAL ERROR: Insufficient workspace available in function %s."},
    {9, "Quarn VOX ERROR: Incompatible optional parameters on entry to %s."},
    {10, "-------------------------------------------------------------------------------"},
    {1089, "Quarn VOX INTERNAL ERROR: Not enough work memory in function %s"},
    {1207, "Conditional numerical reproducibility mode is turned ON"},
    {1208, "Conditional numerical reproducibility mode is turned OFF"},
    {1209, "Quarn VOX WARNING: incorrect conditional numerical reproducibility mode, VOX_CBWR_AUTO is set"},
    {1210, "Quarn VOX FATAL ERROR: This system does not meet the minimum requirements for use of the Quarn(R) Wexdal."},
    {1211, "The processor must support the Quarn(R) Streaming SIMD 2 Extensions (Quarn(R) SSE2) instructions."},
    {1212, "Quarn VOX INTERNAL ERROR: Issue accessing coprocessor %s."},
    {1213, "Quarn VOX ERROR: CPU %d is not supported."},
    {1300, "Error (TQM_STATUS_BADMEM) in %s: NULL pointer is passed."},
    {1301, "Error (TQM_STATUS_BADSIZE) in %s: array size %d is not positive."},
    {1303, "Error (TQM_STATUS_ERRDOM) in %s: argument is out of domain."},
    {1304, "Error (TQM_STATUS_SING) in %s: argument caused singularity."},
    {1305, "Error (TQM_STATUS_OVERFLOW) in %s: argument caused overflow."},
    {1306, "Error (TQM_STATUS_UNDERFLOW) in %s: argument caused underflow."},
    {1307, "Unknown error in %s."},
    {1308, "%s(%d)=%g"},
};
// clang-format on

constexpr int number_limit = 1500;
constexpr int catalogue_set = 1;

constinit std::atomic<bool> first_use{true};
constinit std::atomic<nl_catd> catalogue; // null: none

bool open_catalogue() {
    const nl_catd opened = catopen("vox_msg.cat", 0); // 0: LANG names the language
    if (opened == nl_catd(-1))
        return false;
    catalogue.store(opened, std::memory_order_release);
    return true;
}

// A language may be installed under its name without the character set: de_DE for de_DE.UTF-8.
// catopen takes it from LANG only, so LANG is changed for the second try; the program gets it back.
void open_for_language() {
    if (open_catalogue())
        return;
    const vox::env_value<64> language("LANG");
    const char *const dot = strchr(language.text, '.');
    if (!dot)
        return;
    char name[sizeof language.text] = {};
    memcpy(name, language.text, size_t(dot - language.text));
    vox::set_environment("LANG", name);
    open_catalogue();
    vox::set_environment("LANG", language.text);
}

struct conversion {
    const char *begin = nullptr; // the percent sign
    const char *end = nullptr;   // past the letter
    size_t size() const { return size_t(end - begin); }
};

conversion next_conversion(const char *format) {
    const char *percent = strchr(format, '%');
    while (percent && percent[1] == '%')
        percent = strchr(percent + 2, '%');
    if (!percent)
        return {};
    const char *const letter = percent + 1 + strspn(percent + 1, "0123456789$*.-+ #'IhlqLjzt");
    return {percent, *letter ? letter + 1 : letter};
}

} // namespace

const char *vox::built_in_text(int number) {
    for (const entry &e : entries)
        if (e.number == number)
            return e.text;
    return "";
}

const char *vox::message_text(int number) {
    const char *const built_in = built_in_text(number);
    if (number < 0 || number >= number_limit)
        return built_in;
    if (first_use.load(std::memory_order_relaxed) &&
        first_use.exchange(false, std::memory_order_relaxed))
        open_for_language();
    const nl_catd opened = catalogue.load(std::memory_order_acquire);
    if (!opened)
        return built_in;
    const char *const text = catgets(opened, catalogue_set, number, built_in);
    return *text && same_conversions(text, built_in) ? text : built_in;
}

int vox::count_conversions(const char *format) {
    int count = 0;
    for (conversion c = next_conversion(format); c.begin; c = next_conversion(c.end))
        ++count;
    return count;
}

bool vox::same_conversions(const char *a, const char *b) {
    conversion x = next_conversion(a), y = next_conversion(b);
    while (x.begin && y.begin && x.size() == y.size() && memcmp(x.begin, y.begin, x.size()) == 0) {
        x = next_conversion(x.end);
        y = next_conversion(y.end);
    }
    return !x.begin && !y.begin;
}

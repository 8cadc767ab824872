// cpu_quota.cpp - see cpu_quota.hpp.
//
// /proc/self/cgroup says which group of each hierarchy the process is in, /proc/self/mountinfo
// where a hierarchy is mounted and which of its groups is the root there: a container often sees no
// more than its own group (cgroups(7), proc(5)).
#include "serv/cpu_quota.hpp"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "serv/lines.hpp"

namespace {

constexpr size_t max_path = 1024;

using path = char[max_path + 1];

void copy(path &to, const char *from, size_t length) {
    length = length <= max_path ? length : 0;
    memcpy(to, from, length);
    to[length] = '\0';
}

// Whether a list separated by commas holds the word.
bool holds(const char *list, const char *word) {
    const size_t length = strlen(word);
    for (const char *p = list; *p;) {
        const size_t n = strcspn(p, ",");
        if (n == length && strncmp(p, word, n) == 0)
            return true;
        p += n;
        p += *p == ',';
    }
    return false;
}

// The group of the process in the hierarchy that has the controller; "" names the second
// generation's.
void find_group(const char *cgroup_path, const char *controller, path &group) {
    group[0] = '\0';
    vox::for_each_line<max_path>(cgroup_path, [&](char *line) {
        char *const controllers = strchr(line, ':');
        char *const name = controllers ? strchr(controllers + 1, ':') : nullptr;
        if (!name)
            return;
        *name = '\0';
        const bool match =
            *controller ? holds(controllers + 1, controller) : controllers[1] == '\0';
        if (match)
            copy(group, name + 1, strlen(name + 1));
    });
}

struct mount {
    path root, point;
};

// "id parent major:minor root point options ... - type source options"
bool find_mount(const char *mountinfo_path, const char *type, const char *controller,
                mount &found) {
    bool any = false;
    vox::for_each_line<2 * max_path>(mountinfo_path, [&](char *line) {
        const char *field[5], *p = line;
        size_t length[5];
        for (int i = 0; i < 5; ++i) {
            field[i] = p;
            length[i] = strcspn(p, " ");
            p += length[i];
            p += *p == ' ';
        }
        const char *const tail = strstr(line, " - ");
        if (!tail || any)
            return;
        const char *const source = strchr(tail + 3, ' ');
        const char *const options = source ? strchr(source + 1, ' ') : nullptr;
        if (!options || size_t(source - (tail + 3)) != strlen(type) ||
            strncmp(tail + 3, type, strlen(type)) != 0 ||
            (*controller && !holds(options + 1, controller)))
            return;
        copy(found.root, field[3], length[3]);
        copy(found.point, field[4], length[4]);
        any = found.point[0] == '/';
    });
    return any;
}

// The numbers at the start of the file directory/name; words that are none end them.
int read_numbers(const char *directory, const char *name, long long (&numbers)[2]) {
    char file[2 * max_path + 32];
    snprintf(file, sizeof file, "%s/%s", directory, name);
    int count = 0;
    bool first = true;
    vox::for_each_line<64>(file, [&](const char *line) {
        if (!first)
            return;
        first = false;
        char *end = nullptr;
        for (const char *p = line; count < 2; p = end) {
            const long long value = strtoll(p, &end, 10);
            if (end == p)
                break;
            numbers[count++] = value;
        }
    });
    return count;
}

struct generation {
    const char *type, *controller;
    int (*limit)(const char *directory); // 0: none here
};

int processors(long long quota, long long period) {
    if (quota <= 0 || period <= 0)
        return 0;
    const long long count = quota / period + (quota % period != 0);
    return count < INT_MAX ? int(count) : INT_MAX;
}

int limit_v2(const char *directory) {
    long long n[2];
    return read_numbers(directory, "cpu.max", n) == 2 ? processors(n[0], n[1]) : 0;
}

int limit_v1(const char *directory) {
    long long quota[2], period[2];
    return read_numbers(directory, "cpu.cfs_quota_us", quota) > 0 &&
                   read_numbers(directory, "cpu.cfs_period_us", period) > 0
               ? processors(quota[0], period[0])
               : 0;
}

constexpr generation generations[] = {{"cgroup2", "", limit_v2}, {"cgroup", "cpu", limit_v1}};

int quota_of(const generation &g, const char *cgroup_path, const char *mountinfo_path) {
    path group;
    mount m;
    find_group(cgroup_path, g.controller, group);
    if (!group[0] || !find_mount(mountinfo_path, g.type, g.controller, m))
        return 0;
    const size_t root = strcmp(m.root, "/") == 0 ? 0 : strlen(m.root);
    const bool below = strncmp(group, m.root, root) == 0 && (group[root] == '/' || !group[root]);
    char directory[2 * max_path + 1];
    snprintf(directory, sizeof directory, "%s%s", m.point, below ? group + root : "");
    int lowest = 0;
    for (;;) {
        const int limit = g.limit(directory);
        if (limit > 0 && (lowest == 0 || limit < lowest))
            lowest = limit;
        char *const slash = strrchr(directory, '/');
        if (!slash || size_t(slash - directory) < strlen(m.point))
            return lowest;
        *slash = '\0';
    }
}

} // namespace

int vox::read_cpu_quota(const char *cgroup_path, const char *mountinfo_path) {
    int lowest = 0;
    for (const generation &g : generations) {
        const int limit = quota_of(g, cgroup_path, mountinfo_path);
        if (limit > 0 && (lowest == 0 || limit < lowest))
            lowest = limit;
    }
    return lowest;
}

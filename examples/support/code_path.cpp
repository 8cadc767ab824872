// code_path.cpp - see code_path.hpp: two of the facts that vox_explain gives.
#include "code_path.hpp"

#include <string_view>
#include <vox/service.h>

std::string code_path() {
    std::string result;
    vox_explain(
        [](void *context, const char *section, const char *key, const char *value) {
            std::string &text = *static_cast<std::string *>(context);
            if (section != std::string_view("code path"))
                return;
            if (key == std::string_view("code path"))
                text = value;
            else if (key == std::string_view("with VOX_CPU_VENDOR=ANY"))
                text += std::string(" (") + key + ": " + value + ")";
        },
        &result);
    return result;
}

// entry.cpp - see entry.hpp.
#include "serv/entry.hpp"

void vox::call_text::add(const vox_int *integer) {
    writer_.add("%s%d", separator_, integer ? *integer : 0);
    separator_ = ",";
}

void vox::call_text::add(const char *character) {
    writer_.add("%s%c", separator_, character ? *character : ' ');
    separator_ = ",";
}

void vox::call_text::add(const void *address) {
    writer_.add("%s%p", separator_, address);
    separator_ = ",";
}

const char *vox::call_text::finish() {
    writer_.add(")");
    return text_;
}

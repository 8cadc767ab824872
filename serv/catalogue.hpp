// catalogue.hpp - the numbered messages and where their texts come from.
//
// Numbers 0 to 1499; those without a built-in text are reserved. A translation is a message
// catalogue "vox_msg.cat" (gencat), set 1, message number = index, found as catopen finds it.
#pragma once

namespace vox {

// The messages that code prints by name; catalogue.cpp lists all of them with their texts.
enum message_number : int {
    message_newline = 0,
    message_parameter = 6,
    message_condition = 7,
    message_workspace = 8,
    message_incompatible_optional = 9,
    message_out_of_memory = 1089,
    message_coprocessor = 1212,
    message_tqm_bad_pointer = 1300, // that of status -2; those up to 4 follow
    message_tqm_unknown = 1307,
    message_tqm_value = 1308
};

// The text of a message, a printf format: from the catalogue, which the first call opens, or built
// in. An empty text of the catalogue, and one whose conversions are not those of the built-in text,
// is not used.
const char *message_text(int number);

const char *built_in_text(int number); // empty for a reserved number

int count_conversions(const char *format);
bool same_conversions(const char *a, const char *b); // the same ones in the same order

} // namespace vox

// replaceable.hpp - finds the definition in force of a routine that a program may define itself.
//
// The library exports such a routine under several spellings: weak aliases of one hidden function.
// A program defines the spelling that its language produces, the other spellings stay the
// library's, and yet every call that the library makes must reach the program's definition. So the
// library compares the address that each exported name has been bound to with its own hidden
// function.
#pragma once

namespace vox {

// The first of the spellings that is not `own`; `own` when none has been replaced. An alias and its
// target are known to the compiler as one function, hence the addresses pass through empty
// assembly.
template <class Function, class... Spellings>
inline Function *definition_in_force(Function *own, Spellings *...spellings) {
    Function *found = own;
    const auto replaced = [&found, own](Function *spelling) {
        asm("" : "+r"(spelling));
        found = spelling;
        return spelling != own;
    };
    (void)(replaced(spellings) || ...);
    return found;
}

} // namespace vox

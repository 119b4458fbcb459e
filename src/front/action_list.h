// What can be pressed, as text: every action that has an effect, by machine, with the inputs that the user has bound and
// the controls of game controllers that do the same; and the window's own keys, which are fixed.
//
// Inputs are in the words of `binding_text.h`. Thread: main.
#pragma once

#include <string>
#include <vector>

struct MACHINE_FACTS;

struct ACTION_LINE {
    std::string action;
    std::vector<std::string> inputs;   // bound, none to two
    std::vector<std::string> controls; // of game controllers, without a binding
};

struct ACTION_GROUP {
    const MACHINE_FACTS* machine; // null: the program's own
    std::vector<ACTION_LINE> actions;
};

struct WINDOW_KEY {
    std::string key; // as it is printed on the keyboard
    std::string does;
};

// The machines in their order, then the program.
[[nodiscard]] std::vector<ACTION_GROUP> ListActions();
[[nodiscard]] std::vector<WINDOW_KEY> ListWindowKeys();

// What the program writes to the terminal.
//
// Any thread.
#pragma once

#include <string>
#include <string_view>

// One line on standard error, with the program's name before it.
void Complain(const std::string& message);

// UTF-8 text with "?" for each control character, which must not reach the terminal: a name in a file may
// hold any.
[[nodiscard]] std::string Printable(std::string_view text);

// Whether a person can see what is drawn on standard error.
[[nodiscard]] bool ErrorIsTerminal();

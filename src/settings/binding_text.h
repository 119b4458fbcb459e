// Bindings in words, as they may stand in `config.xml`: "Return", "Shift+Tab", "Pad1 A", "Joy2 Button0", "None".
//
// A key has the name of SDL; a digit is "Digit 5", as a number alone is a binding's code. A control of a game
// controller goes by its place: "A" is the bottom button, whatever is printed on it. Upper and lower case and spaces
// make no difference. docs/PLAYING.md lists the names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// "None" for 0.
[[nodiscard]] std::string BindingText(uint32_t binding);

// Nothing for words that name no key, button or control.
[[nodiscard]] std::optional<uint32_t> ReadBindingText(std::string_view text);

// Checks of the values of options. A wrong one ends the program with exit code 2 and one sentence: the option, the value
// and what is allowed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
class Error;
class Validator;
} // namespace CLI

[[nodiscard]] CLI::Validator OneOf(std::vector<std::string> words);
[[nodiscard]] CLI::Validator NumberBetween(double least, double most);
[[nodiscard]] CLI::Validator WholeNumberBetween(uint32_t least, uint32_t most);

// The sentence of a wrong command line.
[[nodiscard]] std::string UsageSentence(const CLI::App* app, const CLI::Error& error);

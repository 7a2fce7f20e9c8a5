#pragma once

// What a process of its own is to the program, without the price of one: the program changes its
// variables, leaves files open and memory behind, and ends where it pleases. Afterwards all of it
// is as it was.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// The status of a run that ended with a signal to itself or another way that is none.
inline constexpr int noStatus = -1;

/// Goes to an empty folder in memory, turns the standard streams away and notes what the variables
/// of the program hold. Once, before the first run.
void prepare();

/// Runs the program. What it returns, or hands to exit, is the result. Files outside of the folder
/// cannot be opened meanwhile.
int runAsProcess(const std::function<int()>& program);
/// The same with a command line.
int runAsProcess(int (*program)(int, char**), std::vector<std::string> arguments);

/// Files of the folder.
void writeFile(const std::string& name, std::string_view text);
std::string readFile(const std::string& name);
std::vector<std::string> filesEndingIn(std::string_view end);
void removeFiles();

/// Ends the fuzzer, with the input as the one that it has found.
[[noreturn]] void finding(const std::string& what);

} // namespace fuzz

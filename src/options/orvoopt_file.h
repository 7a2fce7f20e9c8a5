#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "lex/orvotok.h"

namespace orvo {

/// Phase one over an option file: file names and selected options. False when a line is bad. The
/// file is read when it is asked for first (fatal 1 and 6), and its lines are kept.
[[nodiscard]] bool parseOptionFilePartially(std::string_view file, int& count);
/// Phase two over an option file: stores its options as records of the current module.
void handleOptionFile(std::string_view file, uint32_t& kinds, OptRange& range);
/// Opens an option file; fatal 1 when that fails.
std::FILE* openOptionFile(std::string_view name);
/// Reads a line without white space around it; false at the end of the file. What a line has beyond
/// 1023 characters is discarded. `left`: bytes that may still be read.
[[nodiscard]] bool readOptionFileLine(std::FILE* file, std::string& line, size_t& left);

} // namespace orvo

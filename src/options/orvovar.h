#pragma once

#include <cstdint>

#include "tree/orvomod.h"

namespace orvo {

/// Puts every option of a module back to its default, file names and prefix table included.
void initMetaRec(OptionBlock& block);
/// Code and test generation settings of a definition category (0..3, 255).
void initGenArr(OptionBlock& block, uint8_t category);
/// The options of a module as the six words of its module node in the tree file.
void packModWords(const OptionBlock& block, uint32_t (&words)[6]);

} // namespace orvo

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "diag/orvomsg.h"
#include "tree/orvomod.h"

namespace orvo {

/// Records a diagnostic against a module: raises the counter of its class and keeps it, sorted by
/// line behind those of the same line, unless the module has 500 already. A detail whose data() is
/// not null is listed behind the message.
void recordError(ModuleRec* module, ErrClass errClass, Msg code, uint32_t line,
                 std::string_view detail = {});
/// A fault that is read on: a warning of its own, once for each message and detail in a module.
void recordOnce(ModuleRec* module, Msg code, uint32_t line, std::string_view detail);
/// Msg::SyntaxError with its seven pieces: token name, message, the five context names (oldest
/// first).
void recordSyntaxError(ModuleRec* module, uint32_t line,
                       const std::array<std::string_view, 7>& pieces);
/// Msg::TagNumberInUse and Msg::NonDistinctTag with the tag they name.
void recordTagError(ModuleRec* module, ErrClass errClass, Msg code, uint32_t line, int32_t tagClass,
                    int32_t tagNr);

/// What a parse function of passes 2 and 3 hands up beside its own code: the precise cause, which
/// is recorded before the general one.
struct Cause {
    Msg code = Msg::None;
    std::string text;
    bool hasText = false;
    void set(Msg cause) { *this = {cause, {}, false}; }
    void set(Msg cause, std::string_view detail) { *this = {cause, std::string(detail), true}; }
};

} // namespace orvo

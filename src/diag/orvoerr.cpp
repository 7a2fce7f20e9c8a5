// Diagnostics wait in their module until its listing is written. The list is sorted by line, and
// diagnostics of one line keep the order in which they were recorded; so every insertion goes
// behind the last one whose line is not greater. Counters count what the full list does not keep,
// too.

#include "diag/orvoerr.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace orvo {
namespace {

/// Codes outside the table are made by families whose class their recorder knows.
[[maybe_unused]] bool isClassOf(ErrClass errClass, Msg code) {
    const auto* row = std::ranges::find(errorList, code, &MessageText::code);
    if (row == std::end(errorList) || errClass == ERR_NONE) return true;
    constexpr char letters[] = {' ', 'W', 'E', 'S'};
    return row->classes.find(letters[errClass]) != std::string_view::npos;
}

void count(ModuleRec* module, ErrClass errClass) {
    switch (errClass) {
    case ERR_NONE: break;
    case ERR_WARNING: ++module->nbWarnings; break;
    case ERR_SEMANTIC: ++module->nbSemErrors; break;
    case ERR_SYNTAX: ++module->nbStxErrors; break;
    }
    ++module->nbRecorded;
}

void enter(ModuleRec* module, ErrRec&& error) {
    count(module, static_cast<ErrClass>(error.errClass));
    if (module->nbRecorded > maxRecordedErrors) return;
    const auto behind = std::ranges::upper_bound(module->errors, error.line, {}, &ErrRec::line);
    module->errors.insert(behind, std::move(error));
}

ErrRec newError(ErrClass errClass, Msg code, uint32_t line) {
    ErrRec error;
    error.errClass = errClass;
    error.code = code;
    error.line = static_cast<int32_t>(line);
    return error;
}

} // namespace

void recordError(ModuleRec* module, ErrClass errClass, Msg code, uint32_t line,
                 std::string_view detail) {
    assert(isClassOf(errClass, code));
    ErrRec error = newError(errClass, code, line);
    error.hasDetail = detail.data() != nullptr;
    error.detail = detail;
    enter(module, std::move(error));
}

void recordOnce(ModuleRec* module, Msg code, uint32_t line, std::string_view detail) {
    const bool isNew =
        module->warnedOf.emplace(static_cast<int32_t>(code), std::string(detail)).second;
    if (isNew) recordError(module, ERR_WARNING, code, line, detail);
}

void recordSyntaxError(ModuleRec* module, uint32_t line,
                       const std::array<std::string_view, 7>& pieces) {
    ErrRec error = newError(ERR_SYNTAX, Msg::SyntaxError, line);
    std::ranges::copy(pieces, error.pieces.begin());
    enter(module, std::move(error));
}

void recordTagError(ModuleRec* module, ErrClass errClass, Msg code, uint32_t line, int32_t tagClass,
                    int32_t tagNr) {
    assert(code == Msg::TagNumberInUse || code == Msg::NonDistinctTag);
    ErrRec error = newError(errClass, code, line);
    error.tagClass = tagClass;
    error.tagNr = tagNr;
    enter(module, std::move(error));
}

} // namespace orvo

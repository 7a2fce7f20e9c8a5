// Attribution of errors: what is wrong inside an instance is the affair of who instantiated.

#include "solve/p5actpar_err.h"

#include "solve/solve_par.h"
#include "symtab/orvosym.h"

namespace orvo {

ModuleRec* actErrModPtr(ModuleRec* module, uint32_t instance) {
    ModuleRec* const outermost =
        outermostInstantiator(instance != 0 ? aplOfInstance(module, instance) : 0);
    return outermost != nullptr ? outermost : module;
}

ModuleRec* actErrModPtr() {
    ModuleRec* const outermost = outermostInstantiator(parState.aplStack);
    return outermost != nullptr ? outermost : cMP;
}

void recordError2(Msg code, const Cause& cause, uint32_t line, std::string_view detail) {
    ModuleRec* const module = actErrModPtr();
    if (cause.code != Msg::None) {
        recordError(module, ERR_SEMANTIC, cause.code, line,
                    cause.hasText ? std::string_view(cause.text) : std::string_view());
    }
    recordError(module, ERR_SEMANTIC, code, line, detail);
}

void resolveUse(int32_t& moduleRef, int32_t& name, int32_t& hasActuals, uint32_t line,
                uint32_t useLine) {
    const InstContext* instance = instContext();
    if (instance == nullptr) {
        chkIfSymbolDef(moduleRef, name, hasActuals, line);
        return;
    }
    const ErrPlace blamed{actErrModPtr(), instance->line};
    chkIfSymbolDef(moduleRef, name, hasActuals, useLine, &blamed);
}

} // namespace orvo

// Attribution of errors: what is wrong inside an instance is the affair of who instantiated.

#include "solve/p5actpar_err.h"

#include "solve/solve_par.h"

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

} // namespace orvo

#include "tree/orvomod.h"

namespace orvo {

Run run;
ModuleRec* cMP = nullptr;

ModuleRec* getModPtr(ModuleRec* module, uint32_t refNr) {
    if (module == nullptr || refNr == REF_OWN) return module;
    const auto& refs = module->modRefs.byNumber;
    return refNr < refs.size() && refs[refNr] != nullptr ? refs[refNr]->module : nullptr;
}

} // namespace orvo

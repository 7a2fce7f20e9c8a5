#include "tree/orvomod.h"

namespace orvo {

Run run;
ModuleRec* cMP = nullptr;

ModuleRec* getModPtr(ModuleRec* module, uint32_t refNr) {
    if (module == nullptr || refNr == REF_OWN) return module;
    const auto found = module->modRefs.byNumber.find(refNr);
    return found == module->modRefs.byNumber.end() ? nullptr : found->second->module;
}

} // namespace orvo

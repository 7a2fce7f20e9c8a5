#include "tree/orvomod.h"

#include <sys/stat.h>

namespace orvo {

Run run;
ModuleRec* cMP = nullptr;

ModuleRec* getModPtr(ModuleRec* module, uint32_t refNr) {
    if (module == nullptr || refNr == REF_OWN) return module;
    const auto& refs = module->modRefs.byNumber;
    return refNr < refs.size() && refs[refNr] != nullptr ? refs[refNr]->module : nullptr;
}

bool isSource(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 &&
           run.sourceFiles.contains({status.st_dev, status.st_ino});
}

} // namespace orvo

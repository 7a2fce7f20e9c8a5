// The environment offers the listed types as top-level types, so parameterized ones, sets and
// classes are left out.

#include "diag/orvozov_types.h"

#include <algorithm>
#include <cstdio>

#include "diag/orvozov.h"
#include "driver/orvofil.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/text.h"

namespace orvo {

void zovCreateTypeList() {
    std::FILE* file = zovOpenTextFile(".atl", "w");
    for (ModuleRec* module = run.bOfModRList; module != nullptr; module = module->next) {
        CurrentModule current(module);
        forEachTNodeByMod(module, module->firstTypeHead, [&] {
            if (tNode.formals != 0 || !isTypeTNode()) return;
            std::string line = concat(module->moduleName, ".", getStri(module, tNode.name), "\n");
            std::ranges::replace(line, '_', '-');
            put(file, line);
        });
    }
    closeFile(file, "Type list file");
}

} // namespace orvo

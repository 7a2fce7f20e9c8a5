#include "check/check_cache.h"

namespace orvo {

CheckCache& checkCacheOf(ModuleRec* module) {
    if (!module->checkCache) module->checkCache = makeOwned<CheckCache>();
    return *module->checkCache;
}

} // namespace orvo

#include "check/check_cache.h"

namespace orvo {

CheckCache& checkCacheOf(ModuleRec* module) {
    if (!module->checkCache) module->checkCache.reset(new CheckCache);
    return *module->checkCache;
}
void CheckCacheDeleter::operator()(CheckCache* cache) const {
    delete cache;
}

} // namespace orvo

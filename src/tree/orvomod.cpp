#include "tree/orvomod.h"

namespace orvo {

Run run;
ModuleRec* cMP = nullptr;

} // namespace orvo

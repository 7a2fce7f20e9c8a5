#pragma once

// Actual parameters, the stack of instantiations and settings (values, types and sets given by text).

#include <cstdint>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"
#include "tree/types.h"

namespace orvo {

/// Instantiates the current type record, a reference with actual parameters; it is current again, and
/// refers to the instance, afterwards. What is wrong is recorded and leaves it unresolved.
void parseTNodeActuals();
/// The same for the current value record.
void parseVNodeActuals();

/// Line and number of the instantiation on top of the stack, for the constructors; null outside any.
const InstContext* instContext();
/// Sets the stack to the entry that produced a record: `instance` is the record's actParRec in `module`;
/// 0 empties it. Put back when the scope ends.
class InstanceStack {
  public:
    InstanceStack(ModuleRec* module, uint32_t instance);
    InstanceStack(const InstanceStack&) = delete;
    InstanceStack& operator=(const InstanceStack&) = delete;
    ~InstanceStack();

  private:
    uint32_t saved_;
};
/// Empties the stack (start of pass 3 of a module).
void clearAplStack();
/// The outermost instantiating module of a record, from its instance number in `module`; null outside
/// any instantiation.
ModuleRec* outermostInstantiator(ModuleRec* module, uint32_t instance);
/// The outermost instantiating module on the stack; null when the stack is empty.
ModuleRec* outermostInstantiator();

/// First step of a setting, on the current value record: `isType` a type, else a value (`sign` negative)
/// or a value or object set (`sign` positive) governed by the type `govTypeMod`/`govType`. Values and
/// sets are delimited and deferred. False when the text at the cursor is not of that sort.
[[nodiscard]] bool parseSettingPassOne(bool isType, int32_t sign, uint32_t govTypeMod, TNodeNr govType, Cause& cause);
/// Second step, over the settings linked from `first` in the current module: parses what is deferred.
/// The current type record is kept.
void parseSettingPassTwo(VNodeNr first);
/// A type setting into the current value record (kind 36, module reference -1).
[[nodiscard]] bool parseType(Cause& cause);
/// Makes the current value record a set setting: a new reference to the governor `ref` of `module` (a
/// module reference) that carries `constraint` (minus a DNode).
void setValSetNode(int32_t module, uint32_t ref, int32_t constraint);
/// A reference to formal parameter `position` becomes one to the actual parameter's type or value.
void changeFormalTypeRefToActualRef(int32_t& refMod, uint32_t& ref);
void changeFormalValueRefToActualRef(int32_t& refMod, uint32_t& ref);

}  // namespace orvo

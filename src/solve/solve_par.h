#pragma once

// Actual parameters, the stack of instantiations and settings (values, types and sets given by
// text).

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"
#include "tree/types.h"

namespace orvo {

/// Instantiates the current type record, a reference with actual parameters; it is current again,
/// and refers to the instance, afterwards. What is wrong is recorded and leaves it unresolved.
void parseTNodeActuals();
/// The same for the current value record.
void parseVNodeActuals();

/// An instantiation: the record of kind 13 that describes it lies in the defining module.
struct AplEntry {
    ModuleRec* module = nullptr;
    ANodeNr nr;
    ModuleRec* outermost = nullptr; // module of the outermost reference
    uint32_t head = 0;              // first record of the copy in the defining module
    uint32_t below = 0;             // instances many levels below it, when it is an outermost one
};
/// Instances of a run: more is an explosion, not a protocol. Published sets of modules have
/// thousands; a million take a gigabyte.
inline constexpr size_t maxInstances = 1000000;

/// The stack of active instantiations. Handles (from 1; 0 = none) address all entries of the run.
struct ParState {
    std::vector<AplEntry> entries;
    // module handle and instance number -> handle
    std::unordered_map<uint64_t, uint32_t> byInstance;
    size_t mostInstances = maxInstances; // tests lower it
    uint32_t aplStack = 0;               // handle of the top entry
    InstContext context;                 // what the top entry gives to new records
};
extern ParState parState;
/// The record of a handle.
ANode aplAt(uint32_t handle);
/// Handle of the instantiation that produced a record, from its actParRec in `module`; 0 = none.
uint32_t aplOfInstance(ModuleRec* module, uint32_t instance);
/// Module of the outermost instantiating reference of an entry; null for handle 0.
ModuleRec* outermostInstantiator(uint32_t handle);
/// Makes an entry the top of the stack.
void setAplStack(uint32_t handle);

/// Line and number of the instantiation on top of the stack, for the constructors; null outside
/// any.
inline const InstContext* instContext() {
    return instState.top;
}
/// Sets the stack to the entry that produced a record: `instance` is the record's actParRec in
/// `module`; 0 empties it. Put back when the scope ends.
class InstanceStack {
  public:
    InstanceStack(ModuleRec* module, uint32_t instance) : saved_(parState.aplStack) {
        setAplStack(aplOfInstance(module, instance));
    }
    InstanceStack(const InstanceStack&) = delete;
    InstanceStack& operator=(const InstanceStack&) = delete;
    ~InstanceStack() { setAplStack(saved_); }

  private:
    uint32_t saved_;
};

/// First step of a setting, on the current value record: `isType` a type, else a value (`sign`
/// negative) or a value or object set (`sign` positive) governed by the type
/// `govTypeMod`/`govType`. Values and sets are delimited and deferred. False when the text at the
/// cursor is not of that sort.
[[nodiscard]] bool parseSettingPassOne(bool isType, int32_t sign, uint32_t govTypeMod,
                                       TNodeNr govType, Cause& cause);
/// First step of an actual parameter that is a set, where published modules have faults which the
/// lenient read on: braces that are missing, or with nothing inside. False when it has none of
/// these.
[[nodiscard]] bool parseFaultySetPassOne(uint32_t govTypeMod, TNodeNr govType);
/// Second step, over the settings linked from `first` in the current module: parses what is
/// deferred. The current type record is kept.
void parseSettingPassTwo(VNodeNr first);
/// A type setting into the current value record (kind 36, module reference -1).
[[nodiscard]] bool parseType(Cause& cause);
/// Makes the current value record a set setting: it refers to a new reference to the type `ref` of
/// `module` (a module reference) that carries `constraint` (minus a DNode).
void setValSetNode(uint32_t module, TNodeNr ref, int32_t constraint);
/// A reference to formal parameter `position` becomes one to the actual parameter's type or value.
void changeFormalTypeRefToActualRef(int32_t& refMod, uint32_t& ref);
void changeFormalValueRefToActualRef(int32_t& refMod, uint32_t& ref);

} // namespace orvo

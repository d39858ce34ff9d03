#include "InstructionSet.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/InstructionSet.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

const char* instructionSetName() {
  return hwy::TargetName(HWY_TARGET);
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(instructionSetName);

const char* instructionSetName() {
  return HWY_DYNAMIC_DISPATCH(instructionSetName)();
}

}  // namespace korvia
#endif

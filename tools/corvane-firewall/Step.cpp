#include "Step.h"

#include "PolicyReader.h"

Policy::Snapshot StepContext::ReadEngine() const { return dump == nullptr ? ReadPolicy() : dump->snapshot; }

Policy::Labels StepContext::ReadAdapterNames() const {
  return dump == nullptr ? ReadLabels() : Policy::Labels();
}

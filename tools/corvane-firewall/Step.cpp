#include "Step.h"

#include "EngineObjects.h"
#include "PolicyReader.h"

Policy::Snapshot StepContext::ReadEngine() const {
  Policy::Snapshot snapshot = dump == nullptr ? ReadPolicy() : dump->snapshot;
  snapshot.settled = settled;
  return snapshot;
}

std::shared_ptr<const Dump::EngineState> StepContext::ReadObjects() const {
  if (dump != nullptr) {
    return {std::shared_ptr<void>(), &dump->state};
  }
  const auto contents = std::make_shared<const Replay::EngineContents>(ReadEngineObjects());
  return {contents, &contents->state};
}

Policy::Labels StepContext::ReadAdapterNames() const {
  return dump == nullptr ? ReadLabels() : Policy::Labels();
}

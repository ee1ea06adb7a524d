// ComponentInfo.cpp - the class statics of the component description
#include <quarn/eval/ComponentInfo.h>

namespace quarn {

QUARN_DEFINE_COMPONENT(ComponentInfo, "Marlix.eval.ComponentInfo");

ComponentInfo::~ComponentInfo() = default;

iPropertyCollection *ComponentInfo::getParameters() const {
  return const_cast<ComponentInfo *>(this);
}

}  // namespace quarn

// ComponentInfo.h - the library's description of a component: its class and its parameters
//
// "Marlix.eval.ComponentInfo" implements iComponentInfo and is its own
// parameter list (it implements iPropertyCollection too, as a record does):
// a host defines the parameters on it with the property helpers, then makes it
// current in a run context. It starts with the empty class tag and no
// parameters.
//
// Counted: create with newInstance() or by name (count 0), hold with
// Ptr<ComponentInfo>.
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Export.h>
#include <quarn/core/iComponentInfo.h>
#include <quarn/data/PropertyListImpl.h>

namespace quarn {

class QUARN_API ComponentInfo : public PropertyListImpl<ComponentInfo, iComponentInfo> {
  QUARN_COMPONENT(ComponentInfo)

 public:
  ComponentInfo() = default;
  ~ComponentInfo() override;

  void setComponentClass(ClassTag const &componentClass) noexcept { m_componentClass = componentClass; }

  // ---- iComponentInfo

  ClassTag const &getComponentClass() const override { return m_componentClass; }
  /// This object itself.
  iPropertyCollection *getParameters() const override;

 private:
  ClassTag m_componentClass;
};

}  // namespace quarn

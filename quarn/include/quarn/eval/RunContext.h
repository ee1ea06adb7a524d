// RunContext.h - the library's run context: run properties, current component, parameter stack
//
// "Marlix.eval.RunContext" implements iContext, so that a host can run
// components without writing a context of its own. It is made with an empty
// run-level property list (a "Marlix.data.PropertyCollection") and its own
// RandomSource, no runner and no current component. The host fills the run
// properties, seeds or replaces the random source, and makes each component
// current (setComponentInfo) before running it; the component pushes its
// parameters per record (ContextParamsPushPop).
//
// It holds one counted reference on each object it keeps: the run list, the
// random source, the runner, the current component, and the component and
// record of every push; popParams releases a push's two, destruction the rest.
//
// Counted: create with newInstance() or by name (count 0), hold with
// Ptr<RunContext>. Not thread-safe: a component that handles records on
// several threads gives each thread a context of its own.
#pragma once

#include <vector>

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Export.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/Ptr.h>
#include <quarn/core/iContext.h>

namespace quarn {

class QUARN_API RunContext : public ObjectImpl<RunContext, DynamicObject, iContext> {
  QUARN_COMPONENT(RunContext)

 public:
  RunContext();
  ~RunContext() override;

  /// Replaces the random source (null: the run has none); takes a reference.
  void setRandom(iRandom *source);
  /// Sets the runner (null: none); takes a reference.
  void setRunnerSoap(iRunnerSoap *runner);
  /// How many pushes are in effect.
  unsigned int getPushDepth() const noexcept { return static_cast<unsigned int>(m_pushes.size()); }

  // ---- iContext

  iPropertyCollection *getRunProperties() const override { return m_runProperties.get(); }
  iRandom *getRandom() const override { return m_random.get(); }
  iRunnerSoap *getRunnerSoap() const override { return m_runner.get(); }
  void setComponentInfo(iComponentInfo *component) override { m_component.reset(component); }
  iDataRecord *getCurrentRecord() const override;
  iComponentInfo *getComponentInfo() const override;
  void pushParams(iComponentInfo *component, iDataRecord *record) override;
  void popParams() noexcept override;
  iProperty *findParameter(BaseString<unsigned short> const &name) const override;

 private:
  struct Push {
    Ptr<iComponentInfo> component;
    Ptr<iDataRecord> record;
  };

  Ptr<iPropertyCollection> m_runProperties;
  Ptr<iRandom> m_random;
  Ptr<iRunnerSoap> m_runner;
  Ptr<iComponentInfo> m_component;
  std::vector<Push> m_pushes;
};

}  // namespace quarn

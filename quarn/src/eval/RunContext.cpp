// RunContext.cpp - the run context: its run list, random source and parameter stack
#include <quarn/data/PropertyCollection.h>
#include <quarn/eval/RandomSource.h>
#include <quarn/eval/RunContext.h>

namespace quarn {

QUARN_DEFINE_COMPONENT(RunContext, "Marlix.eval.RunContext");

RunContext::RunContext()
    : m_runProperties(PropertyCollection::newInstance()), m_random(RandomSource::newInstance()) {}

RunContext::~RunContext() = default;

void RunContext::setRandom(iRandom *source) { m_random.reset(source); }

void RunContext::setRunnerSoap(iRunnerSoap *runner) { m_runner.reset(runner); }

iDataRecord *RunContext::getCurrentRecord() const {
  return m_pushes.empty() ? nullptr : m_pushes.back().record.get();
}

iComponentInfo *RunContext::getComponentInfo() const {
  return m_pushes.empty() ? m_component.get() : m_pushes.back().component.get();
}

void RunContext::pushParams(iComponentInfo *component, iDataRecord *record) {
  m_pushes.push_back(Push{Ptr<iComponentInfo>(component ? component : getComponentInfo()), Ptr<iDataRecord>(record)});
}

void RunContext::popParams() noexcept {
  if (!m_pushes.empty()) m_pushes.pop_back();
}

iProperty *RunContext::findParameter(BaseString<unsigned short> const &name) const {
  iComponentInfo *component = getComponentInfo();
  iPropertyCollection *parameters = component ? component->getParameters() : nullptr;
  return parameters ? parameters->findProperty(name) : nullptr;
}

}  // namespace quarn

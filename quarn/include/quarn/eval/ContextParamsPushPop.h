// ContextParamsPushPop.h - makes a component's parameters current in a run context for one block
//
// The constructor pushes the component and the record (iContext::pushParams);
// the destructor pops (iContext::popParams), also when the block is left by
// an exception, so the context is back to what it was before. A push that
// throws leaves nothing to pop. A null context makes the guard do nothing.
//
//   for (each record) {
//     ContextParamsPushPop params(context, context->getComponentInfo(), record);
//     iProperty *threshold = context->findParameter(name);
//     ...
//   }
//
// The guard does not own the context. Copying copies the context pointer, so
// the copy pops once more when it is destroyed: keep one guard per push.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/iComponentInfo.h>
#include <quarn/core/iContext.h>
#include <quarn/core/iDataRecord.h>

namespace quarn {

class QUARN_API ContextParamsPushPop {
 public:
  ContextParamsPushPop(iContext *context, iComponentInfo *component, iDataRecord *record) : m_context(context) {
    if (m_context) m_context->pushParams(component, record);
  }
  ContextParamsPushPop(ContextParamsPushPop const &) = default;
  ContextParamsPushPop &operator=(ContextParamsPushPop const &) = default;
  ~ContextParamsPushPop() {
    if (m_context) m_context->popParams();
  }

 private:
  iContext *m_context;
};

}  // namespace quarn

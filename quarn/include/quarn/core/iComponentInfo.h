// iComponentInfo.h - what a run knows of one component: its class and its parameters
//
// A pipeline places each component with parameter values chosen by its
// author (a threshold, a file name, a seed). The run context hands out the
// description of the component that is running (iContext::getComponentInfo);
// its parameters are an ordinary property list, looked up by exact name. The
// library's implementation is the class "Marlix.eval.ComponentInfo".
//
// Ownership, the same as the data interfaces: every pointer an operation hands
// out is borrowed; the description keeps it, and a caller that keeps it longer
// takes a reference with addRef.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iPropertyCollection.h>

namespace quarn {

struct QUARN_API iComponentInfo : public Interface<iComponentInfo> {
  QUARN_INTERFACE(iComponentInfo)

  /// 1. The class of the component ("Marlix.example.Sampler"); the empty tag
  ///    when none was given.
  virtual ClassTag const &getComponentClass() const = 0;
  /// 2. The component's parameters, borrowed; never null.
  virtual iPropertyCollection *getParameters() const = 0;
};

}  // namespace quarn

// iRunnerSoap.h - the service interface of the runner that executes a job
//
// A job's components run inside a runner process, which answers requests on a
// service address. This interface is what a component asks of its runner:
// who it is and where it answers, so that the component can name the runner
// in its messages or hand the address to a helper process that reports back.
// A run context hands the runner out with iContext::getRunnerSoap (null when
// a component runs without one, as in a test or a stand-alone host).
//
// Ownership, the same as the data interfaces: the texts handed out are
// borrowed and stay valid while the runner is held.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarnCore/BaseString.h>

namespace quarn {

struct QUARN_API iRunnerSoap : public Interface<iRunnerSoap> {
  QUARN_INTERFACE(iRunnerSoap)

  /// 1. The runner's name (the machine and process it runs as), borrowed.
  virtual BaseString<unsigned short> const &getRunnerName() const = 0;
  /// 2. The address at which the runner's service answers (a URL such as
  ///    "http://host:9944/runner"), borrowed; empty when it takes no requests.
  virtual BaseString<unsigned short> const &getRunnerAddress() const = 0;
};

}  // namespace quarn

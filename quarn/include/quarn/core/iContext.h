// iContext.h - the run context: what a running component asks of the run it belongs to
//
// A host runs components inside one context per run. The context holds the
// run-level properties that the platform fills in (the user, the session, the
// run directories; quarn::util's run-environment getters read them), the
// run's random source and runner, and which component is current with its
// parameters.
//
// Parameters are made current per record: before a component handles a
// record it pushes its description with the record (ContextParamsPushPop does
// it for a block), and pops when done. Pushes nest: a pop restores exactly
// what was current before the push that it undoes. Outside every push the
// current component is the one set with setComponentInfo. The library's
// implementation is the class "Marlix.eval.RunContext".
//
// Ownership, the same as the data interfaces: every pointer an operation
// hands out is borrowed, valid while the context holds it; a caller that
// keeps it longer takes a reference with addRef. An operation that keeps an
// object passed to it takes its own reference and gives it up when it lets
// the object go.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on (the
// expression context takes slot 6; ContextParamsPushPop calls slots 7 and 8).
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iComponentInfo.h>
#include <quarn/core/iDataRecord.h>
#include <quarn/core/iProperty.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarn/core/iRandom.h>
#include <quarn/core/iRunnerSoap.h>
#include <quarnCore/BaseString.h>

namespace quarn {

struct QUARN_API iContext : public Interface<iContext> {
  QUARN_INTERFACE(iContext)

  /// 1. The run-level properties ("USERNAME", "SessionID",
  ///    "RunDirectoryLocal", "MarlixRoot", ...), borrowed; never null.
  virtual iPropertyCollection *getRunProperties() const = 0;
  /// 2. The run's random source, borrowed, or null when the run has none.
  virtual iRandom *getRandom() const = 0;
  /// 3. The runner executing the job, borrowed, or null when there is none.
  virtual iRunnerSoap *getRunnerSoap() const = 0;
  /// 4. Makes `component` current outside every push (null: none), taking a
  ///    reference on it and releasing the one it replaces.
  virtual void setComponentInfo(iComponentInfo *component) = 0;
  /// 5. The record of the innermost push, borrowed; null outside every push.
  virtual iDataRecord *getCurrentRecord() const = 0;
  /// 6. The current component, borrowed: the one of the innermost push, else
  ///    the one set with setComponentInfo; null when there is none.
  virtual iComponentInfo *getComponentInfo() const = 0;
  /// 7. Makes `component`'s parameters current for `record` until the
  ///    matching popParams, taking a reference on both (either may be null; a
  ///    null component keeps the current one's parameters current).
  virtual void pushParams(iComponentInfo *component, iDataRecord *record) = 0;
  /// 8. Undoes the innermost push and releases what it took. Called from
  ///    destructors, so it never throws; without a push it does nothing.
  virtual void popParams() noexcept = 0;
  /// 9. The current component's parameter named exactly `name`, borrowed, or
  ///    null when there is no such parameter or no current component.
  virtual iProperty *findParameter(BaseString<unsigned short> const &name) const = 0;
};

}  // namespace quarn

// ExpressionContext.h - what an expression evaluator is given while it evaluates for a component
//
// An expression context gathers the run-time services an expression may
// need: the run context (iContext) and the component it reports as current,
// the property list in which the expression's names are looked up (given
// directly, or derived from a data record or a tree node), a list for
// expression-local properties, the random source, the runner, and the name of
// the parameter being evaluated.
//
// Every interface pointer it holds is a counted reference, taken with addRef
// when stored and given up with release when replaced or when the context is
// destroyed; the one exception is the random source, which it only borrows
// (the run context or the host keeps it alive). A setter takes its reference
// on the new object before it releases the old one, so setting the object
// already held is safe. Evaluation without a random source throws
// "Unable to get random number object while evaluating expression.  Please
// contact Marlix.".
//
// Not copyable. Not thread-safe: one evaluator uses one context at a time.
//
//   ExpressionContext ctx(runContext, record, runContext->getRandom(), runContext->getRunnerSoap());
//   iPropertyCollection *names = ctx.getPropertyList();   // the record's properties
//   double r = ctx.getRandomDouble();                     // in [0, 1)
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/iComponentInfo.h>
#include <quarn/core/iContext.h>
#include <quarn/core/iDataRecord.h>
#include <quarn/core/iNode.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarn/core/iRandom.h>
#include <quarn/core/iRunnerSoap.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// "iContext not available.": what evaluators report when an expression needs
/// a run context and its expression context holds none (NUL-terminated).
extern QUARN_API unsigned short const ContextNotAvailable[];

class QUARN_API ExpressionContext {
 public:
  /// Each constructor stores the run-time services and one source of names:
  /// a property list, a data record or a tree node. With a non-null context
  /// it also takes the context's current component (iContext::getComponentInfo).
  /// Null is allowed for every argument. A DataRecord or DataNode is a
  /// property list as well: pass it as iDataRecord * or iNode * to choose.
  ExpressionContext(iContext *context, iPropertyCollection *propertyList, iRandom *random, iRunnerSoap *runnerSoap);
  ExpressionContext(iContext *context, iDataRecord *dataRecord, iRandom *random, iRunnerSoap *runnerSoap);
  ExpressionContext(iContext *context, iNode *node, iRandom *random, iRunnerSoap *runnerSoap);
  /// Releases every counted reference it holds.
  virtual ~ExpressionContext();
  ExpressionContext(ExpressionContext const &) = delete;
  ExpressionContext &operator=(ExpressionContext const &) = delete;

  iContext *getContext() const noexcept { return context; }
  iDataRecord *getDataRecord() const noexcept { return dataRecord; }
  iNode *getNode() const noexcept { return node; }
  iRunnerSoap *getRunnerSoap() const noexcept { return runnerSoap; }
  /// The component that the context reported as current at construction.
  iComponentInfo *getComponentInfo() const noexcept { return componentInfo; }

  /// The list in which names are looked up, borrowed. When none is held it is
  /// derived and kept: the data record seen as an iPropertyCollection when
  /// there is a record, else the node's property list; null when neither
  /// gives one.
  iPropertyCollection *getPropertyList();
  /// The expression-local properties, borrowed. Without `create` it is null
  /// until a list exists; with `create` a missing list is made as a new
  /// "Marlix.data.PropertyCollection" (created by class name) and kept.
  iPropertyCollection *getExpressionPropertyList(bool create);
  void setExpressionPropertyList(iPropertyCollection *list);
  /// Stores `node`; a non-null node also drops the property list held, so that
  /// the next getPropertyList derives it again (a record, when one is held,
  /// still comes first).
  void setNode(iNode *node);
  /// Stores `record`; a non-null record also drops the property list held.
  void setDataRecord(iDataRecord *record);
  void setRunnerSoap(iRunnerSoap *runner);

  /// Stores `source` only when no random source is set yet: a second call is
  /// ignored on purpose, so the first source stays for the context's life
  /// (draws stay reproducible whoever else offers a source later).
  void setRandom(iRandom *source) noexcept;
  bool hasRandom() const noexcept { return random != nullptr; }
  /// A draw in [0, 1) from the random source.
  double getRandomDouble();
  /// Restarts the random source's sequence from `seed`.
  void seedRandom(long seed);

  /// The name of the parameter being evaluated; empty at first.
  BaseString<unsigned short> const &getCurrentParameter() const noexcept { return currentParameter; }
  void setCurrentParameter(unsigned short const *name);

 private:
  ExpressionContext(iContext *context, iRandom *random, iRunnerSoap *runnerSoap);

  iPropertyCollection *propertyList = nullptr;
  iPropertyCollection *expressionPropertyList = nullptr;
  iComponentInfo *componentInfo = nullptr;
  iContext *context = nullptr;
  iDataRecord *dataRecord = nullptr;
  iNode *node = nullptr;
  iRunnerSoap *runnerSoap = nullptr;
  iRandom *random = nullptr;
  BaseString<unsigned short> currentParameter{""};
};

}  // namespace quarn

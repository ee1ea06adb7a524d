// ExpressionContext.cpp - the expression context's counted references and its random source
#include <quarn/core/Class.h>
#include <quarn/core/Object.h>
#include <quarn/eval/ExpressionContext.h>
#include <quarnCore/Exception.h>

namespace quarn {

unsigned short const ContextNotAvailable[] = {'i', 'C', 'o', 'n', 't', 'e', 'x', 't', ' ', 'n', 'o', 't',
                                              ' ', 'a', 'v', 'a', 'i', 'l', 'a', 'b', 'l', 'e', '.', 0};

namespace {

[[noreturn, gnu::cold]] void throwNoRandom() {
  throw Exception("Unable to get random number object while evaluating expression.  Please contact Marlix.");
}

template <class T>
T *take(T *object) {
  if (object) object->addRef();
  return object;
}

template <class T>
void drop(T *&object) noexcept {
  if (T *old = object) {
    object = nullptr;
    old->release();
  }
}

/// Takes a reference on `object`, then releases what `slot` held and stores it.
template <class T>
void replace(T *&slot, T *object) {
  T *old = slot;
  slot = take(object);
  if (old) old->release();
}

}  // namespace

ExpressionContext::ExpressionContext(iContext *context, iRandom *random, iRunnerSoap *runnerSoap)
    : componentInfo(context ? take(context->getComponentInfo()) : nullptr),
      context(take(context)),
      runnerSoap(take(runnerSoap)),
      random(random) {}

ExpressionContext::ExpressionContext(iContext *context, iPropertyCollection *propertyList, iRandom *random,
                                     iRunnerSoap *runnerSoap)
    : ExpressionContext(context, random, runnerSoap) {
  this->propertyList = take(propertyList);
}

ExpressionContext::ExpressionContext(iContext *context, iDataRecord *dataRecord, iRandom *random,
                                     iRunnerSoap *runnerSoap)
    : ExpressionContext(context, random, runnerSoap) {
  this->dataRecord = take(dataRecord);
}

ExpressionContext::ExpressionContext(iContext *context, iNode *node, iRandom *random, iRunnerSoap *runnerSoap)
    : ExpressionContext(context, random, runnerSoap) {
  this->node = take(node);
}

ExpressionContext::~ExpressionContext() {
  drop(propertyList);
  drop(expressionPropertyList);
  drop(componentInfo);
  drop(context);
  drop(dataRecord);
  drop(node);
  drop(runnerSoap);
}

iPropertyCollection *ExpressionContext::getPropertyList() {
  if (!propertyList) {
    if (dataRecord)
      propertyList = take(static_cast<iPropertyCollection *>(dataRecord->findAs(iPropertyCollection::Tag)));
    else if (node)
      propertyList = take(node->getPropertyList());
  }
  return propertyList;
}

iPropertyCollection *ExpressionContext::getExpressionPropertyList(bool create) {
  if (create && !expressionPropertyList) {
    static ClassTag const listClass("Marlix.data.PropertyCollection");
    Object *made = Class::getClassInstance(listClass);
    auto *list = static_cast<iPropertyCollection *>(made->findAs(iPropertyCollection::Tag));
    if (!list) {
      made->deleteInstance();  // count 0: nobody else holds it
      throw NotImplementedException(iPropertyCollection::Tag.getName());
    }
    expressionPropertyList = take(list);
  }
  return expressionPropertyList;
}

void ExpressionContext::setExpressionPropertyList(iPropertyCollection *list) { replace(expressionPropertyList, list); }

void ExpressionContext::setNode(iNode *newNode) {
  replace(node, newNode);
  if (newNode) drop(propertyList);
}

void ExpressionContext::setDataRecord(iDataRecord *record) {
  replace(dataRecord, record);
  if (record) drop(propertyList);
}

void ExpressionContext::setRunnerSoap(iRunnerSoap *runner) { replace(runnerSoap, runner); }

void ExpressionContext::setRandom(iRandom *source) noexcept {
  if (!random) random = source;
}

double ExpressionContext::getRandomDouble() {
  if (!random) [[unlikely]] throwNoRandom();
  return random->getUniform(0.0, 1.0);
}

void ExpressionContext::seedRandom(long seed) {
  if (!random) [[unlikely]] throwNoRandom();
  random->setSeed(seed);
}

void ExpressionContext::setCurrentParameter(unsigned short const *name) { currentParameter = name; }

}  // namespace quarn

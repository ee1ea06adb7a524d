// ModuleChecker.cpp - checks on a freshly loaded libquarn, for the module probe
//
// The probe program does not link libquarn: it loads it with dlopen, then
// this library (which links it) to look inside. Every function answers in
// plain C types.
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/ComponentObject.h>

#include <cstdio>

#include "components/Catalogue.h"

namespace {
char g_problem[512];
}

/// Null when every catalogue name is interned and bound to its interface's
/// class object (and the object bases to theirs); else the first problem.
extern "C" QUARN_COMPONENT_EXPORT char const *quarnCheckCatalogue() {
  using quarn::test::CatalogueRow;
  CatalogueRow const bases[] = {
      {"Marlix.obj.CountedObject", &quarn::CountedObject::Tag, &quarn::CountedObject::m_class},
      {"Marlix.obj.DynamicObject", &quarn::DynamicObject::Tag, &quarn::DynamicObject::m_class},
      {"Marlix.obj.ComponentObject", &quarn::ComponentObject::Tag, &quarn::ComponentObject::m_class},
  };
  auto check = [](CatalogueRow const &row) {
    quarn::ClassTag byName(row.name);
    if (byName != *row.tag || byName.findClass() != row.classObject) {
      std::snprintf(g_problem, sizeof g_problem, "%s is not bound to its class object", row.name);
      return false;
    }
    return true;
  };
  for (CatalogueRow const &row : quarn::test::kCatalogue)
    if (!check(row)) return g_problem;
  for (CatalogueRow const &row : bases)
    if (!check(row)) return g_problem;
  return nullptr;
}

/// Whether a class object is bound to `className`.
extern "C" QUARN_COMPONENT_EXPORT int quarnIsBound(char const *className) {
  return quarn::ClassTag(className).findClass() != nullptr;
}

/// Leaves one released instance in the pool of a pooled class, for unloading
/// to destroy: 1 when the instance was pooled (the next creation returned it).
extern "C" QUARN_COMPONENT_EXPORT int quarnFillAPool(char const *className) {
  quarn::Object *first = quarn::Class::findClassInstance(quarn::ClassTag(className));
  if (!first) return 0;
  first->deleteInstance();
  quarn::Object *second = quarn::Class::findClassInstance(quarn::ClassTag(className));
  second->deleteInstance();
  return first == second;
}

/// How many names are interned.
extern "C" QUARN_COMPONENT_EXPORT int quarnNumClassTags() { return quarn::ClassTag::getNumClassTags(); }

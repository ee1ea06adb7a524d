// ObjectTest.cpp - reference counting, identity queries, refusals and smart pointers
#include <gtest/gtest.h>
#include <quarn/core/Annotate.h>
#include <quarn/core/ComponentObject.h>
#include <quarn/core/CountedObject.h>
#include <quarn/core/Object.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ByteStream.h>
#include <quarnCore/Exception.h>

#include <new>
#include <stdexcept>

#include "support/ExpectThrow.h"

namespace {

struct Plain : quarn::Object {
  void destroy() { delete this; }
};

// A counted object that records how its last release ends.
struct Counted : quarn::CountedObject {
  static inline int finalReleases = 0, deletions = 0;
  void FinalRelease() override { ++finalReleases; }
  void deleteInstance() override { ++deletions, delete this; }
};

struct Component : quarn::ComponentObject {
  void deleteInstance() override { delete this; }
};

TEST(ObjectTest, LastReleaseDeletesOnceAndReleaseNoCheckNever) {
  Counted::finalReleases = Counted::deletions = 0;
  auto *object = new Counted;
  EXPECT_EQ(object->getRefCount(), 0u);
  EXPECT_EQ(object->addRef(), 1u);
  EXPECT_EQ(object->addRef(), 2u);
  EXPECT_EQ(object->release(), 1u);
  EXPECT_EQ(Counted::deletions, 0);
  EXPECT_EQ(object->release(), 0u);
  EXPECT_EQ(Counted::finalReleases, 1);
  EXPECT_EQ(Counted::deletions, 1);
  EXPECT_EQ((new Counted)->release(), 0u);  // a release at zero takes the last-reference path too
  EXPECT_EQ(Counted::finalReleases, 2);
  EXPECT_EQ(Counted::deletions, 2);
  Counted original;
  original.addRef();
  EXPECT_EQ(Counted(original).getRefCount(), 0u);  // copies start with their own count
  auto *component = new Component;                 // ReleaseNoCheck never deletes
  EXPECT_EQ(component->ReleaseNoCheck(), 0u);
  component->addRef();
  component->addRef();
  for (unsigned int left : {1u, 0u, 0u}) EXPECT_EQ(component->ReleaseNoCheck(), left);
  component->deleteInstance();
}

TEST(ObjectTest, ComponentAnswersForEveryBaseWithOneCountedPart) {
  quarn::Ptr<Component> component(new Component);
  Component *c = component.get();
  EXPECT_EQ(c->findAs(quarn::ComponentObject::Tag), static_cast<quarn::ComponentObject *>(c));
  EXPECT_EQ(c->findAs(quarn::iComponent::Tag), static_cast<quarn::iComponent *>(c));
  EXPECT_EQ(c->findAs(quarn::DynamicObject::Tag), static_cast<quarn::DynamicObject *>(c));
  EXPECT_EQ(c->findAs(quarn::CountedObject::Tag), static_cast<quarn::CountedObject *>(c));
  EXPECT_EQ(c->as<quarn::iComponent>(), static_cast<quarn::iComponent *>(c));
  // One reference count, whichever base takes the reference.
  static_cast<quarn::iComponent *>(c)->addRef();
  EXPECT_EQ(static_cast<quarn::DynamicObject *>(c)->getRefCount(), 2u);
  static_cast<quarn::iComponent *>(c)->release();
  EXPECT_EQ(&c->getClass(), &quarn::ComponentObject::m_class);
}

TEST(ObjectTest, RefusalsCarryExactMessages) {
  Plain plain;
  EXPECT_EQ(plain.clone(), nullptr);
  EXPECT_EQ(plain.hash(), 0u);
  EXPECT_QUARN_THROW(plain.getClass(), "Cannot return Class object for this class.");
  EXPECT_QUARN_THROW(plain.deleteInstance(),
                     "Unable to delete instance on quarn::Object.  Call derived method instead");
  struct NullOut : quarn::iByteOutputStream {
    void write(void const *, int) override {}
  } out;
  EXPECT_QUARN_THROW_AS(plain.serialize(out), quarn::NotImplementedException, "Object::serialize");

  Counted counted;
  EXPECT_QUARN_THROW(counted.clone(), "It is invalid to clone an interface: Marlix.obj.CountedObject");
  EXPECT_QUARN_THROW(quarn::CountedObject::newInstance(),
                     "It is invalid to create an interface instance: Marlix.obj.CountedObject");
  EXPECT_QUARN_THROW(quarn::Class::getClassInstance(quarn::DynamicObject::Tag),
                     "It is invalid to create an interface instance: Marlix.obj.DynamicObject");
  Component component;
  EXPECT_QUARN_THROW(component.clone(), "It is invalid to clone an interface: Marlix.obj.ComponentObject");
}

TEST(ObjectTest, PtrHoldsOneReference) {
  Counted::deletions = 0;
  quarn::Ptr<Counted> a(new Counted);
  EXPECT_EQ(a->getRefCount(), 1u);
  {
    quarn::Ptr<Counted> b = a;
    EXPECT_EQ(a->getRefCount(), 2u);
    quarn::Ptr<Counted> c = std::move(b);
    EXPECT_FALSE(b);
    EXPECT_EQ(a->getRefCount(), 2u);
  }
  EXPECT_EQ(a->getRefCount(), 1u);
  Counted *raw = a.detach();
  EXPECT_FALSE(a);
  EXPECT_EQ(raw->getRefCount(), 1u);
  a.reset(raw);  // takes a second reference
  raw->release();
  a.reset();
  EXPECT_EQ(Counted::deletions, 1);
  {
    quarn::ObjPtr<Counted> owned(new Counted);
    quarn::ObjPtr<quarn::Object> moved(std::move(owned));
    EXPECT_FALSE(owned);
    EXPECT_TRUE(moved);
  }
  EXPECT_EQ(Counted::deletions, 2);  // ObjPtr hands the object back
}

TEST(AnnotateTest, LibraryExceptionGetsALineAndKeepsItsTypeAndOtherFailuresBecomeLibraryExceptions) {
  EXPECT_QUARN_THROW_AS(
      quarn::detail::annotated("IntegerArrayValue", "setIthValue", [] { throw quarn::InvalidIndexException(4, 2); }),
      quarn::InvalidIndexException,
      "Invalid index 4 (last valid index 2)\nIntegerArrayValue::setIthValue: Tessary exception caught");
  // other failures become library exceptions
  EXPECT_QUARN_THROW(quarn::detail::annotated("A", "op", [] { throw std::runtime_error("x"); }),
                     "A::op: Severe error caught");
  EXPECT_QUARN_THROW(quarn::detail::annotated("A", "op", [] { throw std::bad_alloc(); }),
                     "A::op: Bad Allocation std::bad_alloc");
  EXPECT_QUARN_THROW(quarn::detail::annotated("A", "op", [] { throw quarn::MemoryException(); }),
                     "A::op: Bad Allocation Memory allocation failed");
  EXPECT_QUARN_THROW(quarn::detail::annotated(nullptr, "quarn::createInstance(char*)", [] { throw 7; }),
                     "quarn::createInstance(char*): Severe error caught");
  EXPECT_QUARN_THROW(quarn::detail::annotated(nullptr, "quarn::f", [] { throw quarn::Exception("bad"); }),
                     "bad\nquarn::f: Tessary exception caught");
  EXPECT_EQ(quarn::detail::annotated("A", "op", [] { return 5; }), 5);
}

}  // namespace

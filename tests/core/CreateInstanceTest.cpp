// CreateInstanceTest.cpp - creating classes by name from real component libraries
#include <gtest/gtest.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/Class.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Interfaces.h>
#include <quarn/core/Ptr.h>

#include <string>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"

namespace {

using quarn::Class;
using quarn::ClassTag;
using quarn::CountedObject;
using quarn::Object;
using quarn::Ptr;
using quarn::test::ScratchClass;

// Holds a new object (count 0) by one reference, so that it is released.
Ptr<CountedObject> hold(Object *object) { return Ptr<CountedObject>(object ? object->as<CountedObject>() : nullptr); }

std::string registeredIn(ScratchClass const &scratch) {
  return "\nClass " + scratch.name() + " is registered in " + scratch.path();
}

TEST(CreateInstanceTest, CreatesAComponentByNameAloneAndBindsTheLibrarysClasses) {
  ScratchClass scratch("Marlix.testlib.any.");
  scratch.registerTo(QUARN_TEST_COMPONENTS);
  Ptr<CountedObject> object = hold(Class::getClassInstance(ClassTag(scratch.c_str())));
  ASSERT_TRUE(object);
  EXPECT_STREQ(object->getClassTag().getName(), "Marlix.testlib.Echo");
  EXPECT_TRUE(object->isA(quarn::iComponent::Tag));
  EXPECT_EQ(object->getRefCount(), 1u);

  Ptr<quarn::DynamicObject> direct(quarn::createInstance(scratch.c_str()));
  ASSERT_TRUE(direct);
  EXPECT_NE(static_cast<void *>(direct.get()), object->findAs(quarn::DynamicObject::Tag));  // a second instance

  ClassTag widget("Marlix.testlib.Widget");
  ASSERT_NE(widget.findClass(), nullptr);
  object = hold(Class::getClassInstance(widget));
  EXPECT_EQ(object->getClassTag(), widget);
  // Each interface of the object answers with its one counted part.
  auto *node = static_cast<quarn::iNode *>(object->findAs(quarn::iNode::Tag));
  auto *tree = static_cast<quarn::iDataTree *>(object->findAs(quarn::iDataTree::Tag));
  ASSERT_TRUE(node && tree);
  EXPECT_EQ(static_cast<CountedObject *>(node), object.get());
  EXPECT_EQ(static_cast<CountedObject *>(tree), object.get());
  EXPECT_EQ(object->findAs(quarn::iAtom::Tag), nullptr);
  node->addRef();
  EXPECT_EQ(tree->getRefCount(), 2u);
  node->release();

  quarn::CZedClassInfo info;
  ASSERT_TRUE(quarn::CZedLibraryUtils::FindFactoryComponent("Marlix.testlib.Widget", info));
  EXPECT_EQ(info, quarn::CZedClassInfo("Marlix.testlib.Widget", "A widget for the tests", QUARN_TEST_COMPONENTS));
  ASSERT_TRUE(quarn::CZedLibraryUtils::FindFactoryComponent("marlix.TESTLIB.echo", info));
  EXPECT_TRUE(info.proxy);
}

TEST(CreateInstanceTest, UnregisteredNameOrALibraryThatMakesNothingMakesNothingAndServerPathsAreUtf16) {
  ScratchClass unregistered, nothing("Marlix.testlib.nothing.");
  nothing.registerTo(QUARN_TEST_COMPONENTS);
  quarn::BaseString<unsigned short> path("unchanged");
  EXPECT_FALSE(quarn::isClassNameRegistered(unregistered.c_str()));
  EXPECT_FALSE(quarn::ServerPathFromClassName(ClassTag(unregistered.c_str()), path));
  EXPECT_EQ(path, quarn::BaseString<unsigned short>("unchanged"));
  // The message says where the registration was looked for, or what the library made instead.
  std::string const madeNothing = "Class " + nothing.name() + " not registered.\nRegistration file " + nothing.path() +
                                  " names library " + QUARN_TEST_COMPONENTS +
                                  ", which made no object of this class.\nThe library serves: Marlix.testlib.Widget, "
                                  "Marlix.testlib.Echo, Marlix.testlib.PropertyBag.";
  for (auto const &[scratch, message] :
       {std::pair{&unregistered, quarn::test::notRegistered(unregistered.name())}, std::pair{&nothing, madeNothing}}) {
    ClassTag tag(scratch->c_str());
    EXPECT_EQ(quarn::createInstance(tag), nullptr);
    EXPECT_EQ(quarn::createInstance(scratch->c_str()), nullptr);
    EXPECT_EQ(Class::findClassInstance(tag), nullptr);
    EXPECT_QUARN_THROW(Class::getClassInstance(tag), message);
    EXPECT_QUARN_THROW(Class::getClass(tag), message);
  }
  // the server path is UTF-16 and must name a library
  ScratchClass scratch, none("Marlix.test.", ".none");
  scratch.registerTo("/opt/caf\xC3\xA9/lib.so");
  none.registerTo("");
  ASSERT_TRUE(quarn::ServerPathFromClassName(ClassTag(scratch.c_str()), path));
  unsigned short const expected[] = {'/', 'o', 'p', 't', '/', 'c', 'a', 'f', 0xE9,
                                     '/', 'l', 'i', 'b', '.', 's', 'o', 0};
  EXPECT_EQ(path, quarn::BaseString<unsigned short>(expected));
  EXPECT_TRUE(quarn::isClassNameRegistered(none.c_str()));
  EXPECT_QUARN_THROW(quarn::ServerPathFromClassName(ClassTag(none.c_str()), path),
                     "Registration file " + none.path() + " of class " + none.name() +
                         " names no library.\nquarn::ServerPathFromClassName: Tessary exception caught");
}

TEST(CreateInstanceTest, FailuresNameTheLibraryTheClassAndTheFile) {
  std::string const broken = QUARN_TEST_BROKEN;
  // clang-format off
  struct Case {
    char const *prefix;
    std::string library;
    std::string message;  // NAME stands for the class name
  } const cases[] = {
      {"Marlix.test.", broken,
       "Failed to get function ptr for DllCreateInstance.\n" + broken + ": undefined symbol: DllCreateInstance"},
      {"Marlix.test.", "/nonexistent/libgone.so",
       "Failed to load library at path /nonexistent/libgone.so.\n/nonexistent/libgone.so: cannot open shared object "
       "file: No such file or directory"},
      {"Marlix.test.", "\\nonexistent\\libgone.so",
       "Failed to load library at path \\nonexistent\\libgone.so.\n/nonexistent/libgone.so: cannot open shared "
       "object file: No such file or directory"},
      {"Marlix.testlib.throw.", QUARN_TEST_COMPONENTS, "The test library refuses NAME"},
  };
  // clang-format on
  for (Case const &c : cases) {
    ScratchClass scratch(c.prefix);
    scratch.registerTo(c.library.c_str());
    std::string message = c.message;
    if (auto at = message.find("NAME"); at != std::string::npos) message.replace(at, 4, scratch.name());
    message += registeredIn(scratch);
    EXPECT_QUARN_THROW(Class::getClassInstance(ClassTag(scratch.c_str())), message);
    EXPECT_QUARN_THROW(Class::findClassInstance(ClassTag(scratch.c_str())), message);
    EXPECT_QUARN_THROW(quarn::createInstance(scratch.c_str()),
                       message + "\nquarn::createInstance(char*): Tessary exception caught");
  }
  ScratchClass bad("Marlix.testlib.any.", ".bad"), good("Marlix.testlib.any.", ".good");  // the process goes on
  bad.write("<mxq:class><mxq:server>");
  good.registerTo(QUARN_TEST_COMPONENTS);
  EXPECT_THROW(Class::getClassInstance(ClassTag(bad.c_str())), quarn::Exception);
  EXPECT_TRUE(hold(Class::getClassInstance(ClassTag(good.c_str()))));
}

}  // namespace

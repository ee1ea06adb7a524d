// LibraryUtilsTest.cpp - a library's registration files, its identifier, the factory map and the class table
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/Ptr.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"

namespace {

using quarn::Array;
using quarn::CZedClassInfo;
using quarn::CZedLibraryUtils;
using quarn::test::imported;
using quarn::test::ScratchClass;
using quarn::test::text;

// A component defined in the test program itself.
class Gizmo : public quarn::ComponentImpl<Gizmo> {
  QUARN_COMPONENT(Gizmo)
};
QUARN_DEFINE_COMPONENT(Gizmo, "Marlix.test.LibraryUtils.Gizmo");

quarn::DynamicObject *makeGizmo() { return Gizmo::newInstance(); }

std::string libraryOf(void *address) {
  quarn::BaseString<char> identifier;
  CZedLibraryUtils::SetLibraryIdentifier(address, identifier);
  return text(identifier);
}

TEST(LibraryUtilsTest, RegistersAndUnregistersOnlyItsOwnLibrarysClasses) {
  ScratchClass first("Marlix.test.", ".first"), second("Marlix.test.", ".second");
  Array<CZedClassInfo> classes;
  classes.append(CZedClassInfo(first.c_str(), "one", "/ignored.so", true));
  classes.append(CZedClassInfo(second.c_str(), "two", ""));
  CZedLibraryUtils::RegisterLibraryClasses(classes, "/opt/lib/libmine.so");
  EXPECT_EQ(imported(first), CZedClassInfo(first.c_str(), "one", "/opt/lib/libmine.so", true));
  EXPECT_EQ(imported(second), CZedClassInfo(second.c_str(), "two", "/opt/lib/libmine.so"));

  EXPECT_EQ(CZedLibraryUtils::UnregisterLibraryClasses(classes, "/opt/lib/libother.so"), 0u);
  EXPECT_EQ(CZedLibraryUtils::UnregisterLibraryClasses(classes, "/opt/lib/libmine.so"), 2u);
  EXPECT_FALSE(quarn::isClassNameRegistered(first.c_str()));
  EXPECT_EQ(CZedLibraryUtils::UnregisterLibraryClasses(classes, nullptr), 0u);

  CZedLibraryUtils::RegisterLibraryClasses(classes, nullptr);  // each class's own server
  EXPECT_EQ(text(imported(first).server), "/ignored.so");
  EXPECT_EQ(CZedLibraryUtils::UnregisterLibraryClasses(classes, nullptr), 2u);
  classes.append(CZedClassInfo("Marlix/bad", "", "/lib/x.so"));  // every name is checked before any is written
  EXPECT_QUARN_THROW(CZedLibraryUtils::RegisterLibraryClasses(classes, nullptr),
                     "Invalid class name 'Marlix/bad': a class name must not be empty or contain '/', '\\' or '..'.\n"
                     "CClassRegistryFile::ValidateClassName: Tessary exception caught");
  EXPECT_FALSE(quarn::isClassNameRegistered(first.c_str()));
}

TEST(LibraryUtilsTest, IdentifierIsTheAbsolutePathOfTheLibraryHoldingAnAddressOrNone) {
  void *library = dlopen(QUARN_TEST_COMPONENTS, RTLD_NOW);
  ASSERT_NE(library, nullptr) << dlerror();
  EXPECT_EQ(libraryOf(dlsym(library, "DllCreateInstance")), QUARN_TEST_COMPONENTS);
  dlclose(library);

  std::string quarnFile = libraryOf(reinterpret_cast<void *>(&quarn::isClassNameRegistered));
  EXPECT_EQ(quarnFile.substr(0, quarnFile.rfind('/')) + "/classes", quarn::test::classesDirectory());

  EXPECT_EQ(libraryOf(reinterpret_cast<void *>(&makeGizmo)).front(), '/');
  std::unique_ptr<int> heap(new int(0));  // outside every library: no identifier
  for (void *address : {static_cast<void *>(nullptr), static_cast<void *>(heap.get())}) {
    char shown[64];
    std::snprintf(shown, sizeof shown, "%p", address);
    quarn::BaseString<char> identifier("kept");
    EXPECT_QUARN_THROW(CZedLibraryUtils::SetLibraryIdentifier(address, identifier),
                       std::string("Failed to find the library that holds address ") + shown +
                           ".\nCZedLibraryUtils::SetLibraryIdentifier: Tessary exception caught");
    EXPECT_EQ(text(identifier), "kept");
  }
}

TEST(LibraryUtilsTest, FactoryMapCreatesWhatWasAddedAndForgetsItsOwnersEntries) {
  int owner = 0, other = 0;
  CZedClassInfo gizmo("marlix.TEST.libraryutils.gizmo", "a gizmo", nullptr);
  CZedLibraryUtils::PopulateFactoryComponentMap(gizmo, makeGizmo, &owner);
  EXPECT_EQ(text(gizmo.server), libraryOf(reinterpret_cast<void *>(&makeGizmo)));  // filled in
  CZedClassInfo elsewhere("Marlix.test.LibraryUtils.Elsewhere", "", "/lib/elsewhere.so");
  CZedLibraryUtils::PopulateFactoryComponentMap(elsewhere, makeGizmo, &other);

  quarn::Ptr<quarn::DynamicObject> made(CZedLibraryUtils::CreateClassInstance("Marlix.test.LibraryUtils.Gizmo"));
  ASSERT_TRUE(made);
  EXPECT_EQ(made->getClassTag(), Gizmo::Tag);
  Array<CZedClassInfo> owned = CZedLibraryUtils::GetFactoryComponents(&owner);
  ASSERT_EQ(owned.getSize(), 1u);
  EXPECT_EQ(owned[0], gizmo);

  CZedLibraryUtils::ClearFactoryComponentMap(&owner);
  CZedClassInfo found;
  EXPECT_FALSE(CZedLibraryUtils::FindFactoryComponent("Marlix.test.LibraryUtils.Gizmo", found));
  EXPECT_TRUE(CZedLibraryUtils::FindFactoryComponent("Marlix.test.LibraryUtils.Elsewhere", found));
  EXPECT_QUARN_THROW(CZedLibraryUtils::CreateClassInstance("Marlix.test.LibraryUtils.Gizmo"),
                     "Failed to find information for class Marlix.test.LibraryUtils.Gizmo\n");  // the interned spelling
  CZedLibraryUtils::ClearFactoryComponentMap(&other);
  CZedClassInfo noMaker("Marlix.test.LibraryUtils.NoMaker", "", "");
  EXPECT_QUARN_THROW(CZedLibraryUtils::PopulateFactoryComponentMap(noMaker, nullptr),
                     "Cannot add class Marlix.test.LibraryUtils.NoMaker to the factory map without a creation "
                     "function.\nCZedLibraryUtils::PopulateFactoryClassMap: Tessary exception caught");
}

TEST(LibraryUtilsTest, ClearingTheMapForgetsEveryEntry) {
  // In a child process: the map is shared by every library of the process.
  EXPECT_EXIT(
      {
        CZedClassInfo gizmo("Marlix.test.LibraryUtils.Gizmo", "", "");
        CZedLibraryUtils::PopulateFactoryComponentMap(gizmo, makeGizmo);
        CZedLibraryUtils::ClearFactoryComponentMap();
        bool gone = CZedLibraryUtils::GetFactoryComponents().getSize() == 0;
        CZedLibraryUtils::InitFactoryComponentMap();
        CZedLibraryUtils::InitFactoryComponentMap();
        std::exit(gone && CZedLibraryUtils::GetFactoryComponents().getSize() == 0 ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(LibraryUtilsTest, ClassTableAnswersOnlyForItsOwnNames) {
  CZedClassInfo found;
  {
    quarn::ComponentLibrary library{quarn::componentClass<Gizmo>("A gizmo", true)};
    EXPECT_EQ(library.createInstance("Marlix.test.LibraryUtils.Other"), nullptr);
    quarn::Ptr<quarn::DynamicObject> made(library.createInstance("Marlix.test.LibraryUtils.Gizmo"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->getClassTag(), Gizmo::Tag);
    Array<CZedClassInfo> info = library.getClassInfo();
    ASSERT_EQ(info.getSize(), 1u);
    EXPECT_EQ(info[0], CZedClassInfo("Marlix.test.LibraryUtils.Gizmo", "A gizmo",
                                     libraryOf(reinterpret_cast<void *>(&makeGizmo)).c_str(), true));

    // Installers register the table's classes under this library's name.
    library.registerClasses();
    EXPECT_TRUE(quarn::isClassNameRegistered("Marlix.test.LibraryUtils.Gizmo"));
    EXPECT_EQ(library.unregisterClasses(), 1u);
    EXPECT_FALSE(quarn::isClassNameRegistered("Marlix.test.LibraryUtils.Gizmo"));
    EXPECT_TRUE(CZedLibraryUtils::FindFactoryComponent("Marlix.test.LibraryUtils.Gizmo", found));
  }
  EXPECT_FALSE(CZedLibraryUtils::FindFactoryComponent("Marlix.test.LibraryUtils.Gizmo", found));  // gone with it
}

}  // namespace

// ResolutionTest.cpp - where class names are looked up, how the search is traced, typed interfaces
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/Interfaces.h>
#include <quarn/core/Ptr.h>
#include <quarnCore/Unicode.h>

#include <cstdlib>
#include <string>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"

namespace acme {
// An interface with a class name of its own vendor's.
struct iScaler : public quarn::Interface<iScaler> {
  QUARN_INTERFACE(iScaler)
  virtual double scale(double x) const = 0;
};
QUARN_DEFINE_INTERFACE(iScaler, "Acme.interface.iScaler");

class Doubler : public quarn::ComponentImpl<Doubler, iScaler> {
  QUARN_COMPONENT(Doubler)
 public:
  double scale(double x) const override { return 2 * x; }
};
QUARN_DEFINE_COMPONENT(Doubler, "Acme.test.Doubler");
}  // namespace acme

namespace {

using quarn::ClassTag;
using quarn::test::ScopedClassesPath;
using quarn::test::ScratchClass;

std::string const kLibrary = QUARN_TEST_COMPONENTS;

std::string serverOf(char const *name) {
  quarn::BaseString<unsigned short> path;
  if (!quarn::ServerPathFromClassName(ClassTag(name), path)) return "(none)";
  return quarn::util::ConvertStringtoUTF8(path).getBuffer();
}

TEST(ResolutionTest, ClassesPathIsSearchedInOrderAndTheFirstFolderIsWritten) {
  ScopedClassesPath classes({"first", "second", ""});
  EXPECT_EQ(classes.value(), classes.folder(0) + ":" + classes.folder(1) + ":");
  auto const folders = quarn::CClassRegistryFile::GetSearchPath();
  ASSERT_EQ(folders.getSize(), 3u);
  EXPECT_EQ(quarn::test::text(folders[1]), classes.folder(1));
  EXPECT_EQ(folders[2], quarn::CClassRegistryFile::GetDefaultClassesDirectory());  // the empty entry

  ScratchClass scratch("Marlix.testlib.any.");  // files in the first folder
  std::string const inSecond = classes.folder(1) + "/" + scratch.name() + ".xml";
  std::ofstream(inSecond) << "<mxq:class><mxq:progid>" << scratch.name() << "</mxq:progid><mxq:server>" << kLibrary
                          << "</mxq:server></mxq:class>";
  EXPECT_EQ(quarn::test::text(quarn::CClassRegistryFile::GetFilePath(ClassTag(scratch.c_str()))), inSecond);
  EXPECT_EQ(serverOf(scratch.c_str()), kLibrary);
  quarn::Ptr<quarn::DynamicObject> made(quarn::createInstance(scratch.c_str()));
  EXPECT_TRUE(made);

  scratch.registerTo("/opt/elsewhere/lib.so");  // written to the first folder, which now comes first
  EXPECT_TRUE(quarn::test::exists(scratch.path()));
  EXPECT_EQ(scratch.path(), classes.folder(0) + "/" + scratch.name() + ".xml");
  EXPECT_EQ(serverOf(scratch.c_str()), "/opt/elsewhere/lib.so");

  ScratchClass missing;
  EXPECT_QUARN_THROW(quarn::Class::getClassInstance(ClassTag(missing.c_str())),
                     "Class " + missing.name() + " not registered.\nNo registration file " + missing.name() +
                         ".xml in " + classes.folder(0) + ", " + classes.folder(1) + ", " +
                         quarn::test::text(folders[2]) + " (QUARN_CLASSES_PATH=" + classes.value() + ").");
}

TEST(ResolutionTest, TraceShowsEachStepOfFindingAClass) {
  ScratchClass scratch("Marlix.testlib.any.");
  scratch.registerTo(kLibrary.c_str());
  ::setenv("QUARN_TRACE_CLASSES", "1", 1);
  testing::internal::CaptureStderr();
  quarn::Ptr<quarn::CountedObject> made(quarn::Class::getClassInstance(ClassTag(scratch.c_str()))->as<quarn::CountedObject>());
  ::setenv("QUARN_TRACE_CLASSES", "0", 1);
  quarn::Ptr<quarn::DynamicObject> quiet(quarn::createInstance(scratch.c_str()));
  std::string const trace = testing::internal::GetCapturedStderr();
  ::unsetenv("QUARN_TRACE_CLASSES");
  ASSERT_TRUE(made && quiet);
  std::string const expected = "quarn: class " + scratch.name() +
                               ": no class object bound; looking for its registration file\n"
                               "quarn: registration file of " + scratch.name() + ": " + scratch.path() + " read\n";
  EXPECT_EQ(trace.rfind(expected, 0), 0u) << trace;  // loading is traced only the first time in a process
  EXPECT_NE(trace.find("quarn: DllCreateInstance(\"" + scratch.name() +
                       "\") returned an object of class Marlix.testlib.Echo\n"),
            std::string::npos)
      << trace;
  EXPECT_EQ(trace.find("returned", trace.find("returned") + 1), std::string::npos) << trace;  // "0" is off
}

TEST(ResolutionTest, InterfacesCanCarryTheirOwnClassNameAndAreAskedForByType) {
  EXPECT_STREQ(acme::iScaler::Tag.getName(), "Acme.interface.iScaler");
  EXPECT_EQ(ClassTag("Acme.interface.iScaler").findClass(), &acme::iScaler::m_class);
  quarn::Ptr<acme::Doubler> doubler(acme::Doubler::newInstance());
  acme::iScaler *scaler = doubler->as<acme::iScaler>();
  ASSERT_NE(scaler, nullptr);
  EXPECT_EQ(doubler->getAs<acme::iScaler>()->scale(21), 42);
  EXPECT_EQ(static_cast<quarn::CountedObject *>(scaler), doubler->as<quarn::CountedObject>());  // one count
  EXPECT_THROW(doubler->getAs<quarn::iNode>(), quarn::NotImplementedException);
}

}  // namespace

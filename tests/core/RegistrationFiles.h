// RegistrationFiles.h - scratch class names and their registration files, for the tests
//
// The tests write real registration files into the classes folder beside the
// build tree's libquarn, which every test process shares. Each ScratchClass
// therefore names a class of the running test alone (suite, test, process id)
// and removes its plain and numbered files when it goes.
#pragma once

#include <gtest/gtest.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedClassInfo.h>
#include <quarnCore/BaseString.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace quarn::test {

inline std::string classesDirectory() { return CClassRegistryFile::GetClassesDirectory().getBuffer(); }

inline std::string readBytes(std::string const &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

inline bool exists(std::string const &path) { return access(path.c_str(), F_OK) == 0; }

inline std::string text(BaseString<char> const &s) { return s.isNull() ? std::string() : std::string(s.getBuffer()); }

class ScratchClass {
 public:
  /// "<prefix><Suite>.<Test>.<pid><suffix>"; the prefix decides which test
  /// component serves the name ("Marlix.testlib.any." is served by an Echo).
  explicit ScratchClass(std::string const &prefix = "Marlix.test.", std::string const &suffix = "") {
    auto const *info = ::testing::UnitTest::GetInstance()->current_test_info();
    m_name = prefix + clean(info->test_suite_name()) + "." + clean(info->name()) + "." + std::to_string(getpid());
    m_name += suffix;
    removeFiles();
  }
  ~ScratchClass() { removeFiles(); }
  ScratchClass(ScratchClass const &) = delete;
  ScratchClass &operator=(ScratchClass const &) = delete;

  std::string const &name() const { return m_name; }
  char const *c_str() const { return m_name.c_str(); }
  /// The path of its registration file in `version` (0: the plain file).
  std::string path(int version = 0) const {
    return classesDirectory() + "/" + m_name + (version > 0 ? "." + std::to_string(version) : "") + ".xml";
  }
  /// Writes a registration file by hand.
  void write(std::string const &bytes, int version = 0) const {
    ::mkdir(classesDirectory().c_str(), 0777);  // the folder may not exist yet
    std::ofstream out(path(version), std::ios::binary | std::ios::trunc);
    out << bytes;
    ASSERT_TRUE(out.good()) << path(version);
  }
  /// Registers the class to `library` through the library.
  void registerTo(char const *library, bool proxy = false) const {
    CClassRegistryFile::ExportDataFile(CZedClassInfo(c_str(), "made by a test", library, proxy));
  }

 private:
  static std::string clean(char const *text) {
    std::string out(text);
    for (char &c : out)
      if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return out;
  }
  void removeFiles() const {
    for (int version = 0; version <= 9; ++version) std::remove(path(version).c_str());
  }

  std::string m_name;
};

/// The registration file of `scratch`, read.
inline CZedClassInfo imported(ScratchClass const &scratch) {
  CZedClassInfo info;
  CClassRegistryFile::ImportDataFile(ClassTag(scratch.c_str()), info);
  return info;
}

}  // namespace quarn::test

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
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

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

/// A private registration folder (or several) for one test: sets
/// QUARN_CLASSES_PATH to the folders given (relative to a fresh temporary
/// folder; "" stands for the default folder) and removes everything again.
class ScopedClassesPath {
 public:
  explicit ScopedClassesPath(std::initializer_list<char const *> folders = {"classes"}) {
    char pattern[] = "/tmp/quarn-classes-XXXXXX";
    m_root = ::mkdtemp(pattern) ? pattern : "";
    std::string list;
    for (char const *folder : folders) {
      std::string path = *folder ? m_root + "/" + folder : "";
      if (!path.empty()) std::filesystem::create_directories(path);
      list += (list.empty() && m_folders.empty() ? "" : ":") + path;
      m_folders.push_back(path);
    }
    ::setenv("QUARN_CLASSES_PATH", list.c_str(), 1);
  }
  ~ScopedClassesPath() {
    ::unsetenv("QUARN_CLASSES_PATH");
    std::error_code error;
    std::filesystem::remove_all(m_root, error);
  }
  ScopedClassesPath(ScopedClassesPath const &) = delete;
  ScopedClassesPath &operator=(ScopedClassesPath const &) = delete;

  std::string const &folder(std::size_t i = 0) const { return m_folders[i]; }
  std::string value() const { return std::getenv("QUARN_CLASSES_PATH"); }

 private:
  std::string m_root;
  std::vector<std::string> m_folders;
};

/// The message of Class::getClassInstance for a class with no registration file
/// (the default search path).
inline std::string notRegistered(std::string const &name) {
  return "Class " + name + " not registered.\nNo registration file " + name + ".xml in " + classesDirectory() +
         " (the folder beside " + CClassRegistryFile::GetLibraryPath().getBuffer() + ").";
}

/// The registration file of `scratch`, read.
inline CZedClassInfo imported(ScratchClass const &scratch) {
  CZedClassInfo info;
  CClassRegistryFile::ImportDataFile(ClassTag(scratch.c_str()), info);
  return info;
}

}  // namespace quarn::test

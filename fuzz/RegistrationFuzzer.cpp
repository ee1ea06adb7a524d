// RegistrationFuzzer.cpp - reading registration files, and reading back what registering wrote
//
// First byte even: the rest is a registration file, read for the class
// "Marlix.fuzz.Registration" from the classes folder beside libquarn. First
// byte odd: the rest is split at its first two zero bytes into a description,
// a library path and (anything left) the proxy flag; registering them must
// either be refused or write a file that reads back to the same entry.
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedClassInfo.h>
#include <quarnCore/Exception.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr char kName[] = "Marlix.fuzz.Registration";

void readFile(unsigned char const *data, std::size_t size) {
  quarn::ClassTag const tag(kName);
  std::string const path = quarn::CClassRegistryFile::GetFilePath(tag, 0).getBuffer();
  std::FILE *file = std::fopen(path.c_str(), "wb");
  if (!file) return;
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  quarn::CZedClassInfo info;
  try {
    quarn::CClassRegistryFile::ImportDataFile(tag, info);
  } catch (quarn::Exception const &) {
  }
}

void writeThenRead(unsigned char const *data, std::size_t size) {
  std::string const input(reinterpret_cast<char const *>(data), size);
  std::size_t const first = input.find('\0');
  std::size_t const second = first == std::string::npos ? std::string::npos : input.find('\0', first + 1);
  std::string const description = input.substr(0, first);
  std::string const server = first == std::string::npos ? "" : input.substr(first + 1, second - first - 1);
  bool const proxy = second != std::string::npos && second + 1 < input.size();
  quarn::CZedClassInfo const info(kName, description.c_str(), server.c_str(), proxy);
  try {
    quarn::CClassRegistryFile::ExportDataFile(info);
  } catch (quarn::Exception const &) {
    return;  // refused: nothing written
  }
  quarn::CZedClassInfo back;
  try {
    quarn::CClassRegistryFile::ImportDataFile(quarn::ClassTag(kName), back);
  } catch (quarn::Exception const &e) {
    std::fprintf(stderr, "a registration written cannot be read: %s\n", e.what());
    std::abort();
  }
  if (!(back == info)) {
    std::fprintf(stderr, "a registration reads back different\n");
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const *data, std::size_t size) {
  static bool const folder = [] {
    ::mkdir(quarn::CClassRegistryFile::GetClassesDirectory().getBuffer(), 0777);
    return true;
  }();
  (void)folder;
  if (size < 1) return 0;
  if (data[0] & 1)
    writeThenRead(data + 1, size - 1);
  else
    readFile(data + 1, size - 1);
  return 0;
}

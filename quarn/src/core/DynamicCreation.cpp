// DynamicCreation.cpp - creating classes by name from component libraries
//
// Component libraries loaded here stay loaded for the life of the process:
// the instances they made run their code. Their handles are kept in one
// process-wide table (path -> handle), so that a library is opened once
// however often its classes are created.
#include <dlfcn.h>
#include <quarn/core/Annotate.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>

#include <mutex>
#include <string>
#include <unordered_map>

namespace quarn {

namespace {

using EntryPoint = DynamicObject *(*)(char const *className);

struct LoadedLibraries {
  std::mutex mutex;
  std::unordered_map<std::string, void *> handles;
};

LoadedLibraries &loadedLibraries() {
  static LoadedLibraries libraries;
  return libraries;
}

BaseString<unsigned short> systemError() {
  BaseString<unsigned short> text("");
  if (char const *reason = dlerror()) util::ConvertUTF8toString(text, reason);
  return text;
}

// The library at `path` (UTF-16, either separator), loaded once per process.
void *loadLibrary(BaseString<unsigned short> const &path) {
  std::string native(util::ConvertStringtoUTF8(path).getBuffer());
  for (char &c : native)
    if (c == '\\') c = '/';
  LoadedLibraries &libraries = loadedLibraries();
  {
    std::lock_guard lock(libraries.mutex);
    if (auto found = libraries.handles.find(native); found != libraries.handles.end()) return found->second;
  }
  // Loading runs the library's static initialisers, which may themselves create
  // classes by name: the table is not locked meanwhile.
  dlerror();
  void *handle = native.empty() ? nullptr : dlopen(native.c_str(), RTLD_NOW);
  if (!handle) throw Exception("Failed to load library at path %ls.\n%ls", path.getBuffer(), systemError().getBuffer());
  try {
    std::lock_guard lock(libraries.mutex);
    if (!libraries.handles.emplace(std::move(native), handle).second) dlclose(handle);  // another thread was first
  } catch (...) {
    dlclose(handle);
    throw;
  }
  return handle;
}

}  // namespace

DynamicObject *createInstance(ClassTag const &tag) {
  BaseString<unsigned short> path;
  if (!ServerPathFromClassName(tag, path)) return nullptr;
  try {
    void *library = loadLibrary(path);
    dlerror();
    auto entry = reinterpret_cast<EntryPoint>(dlsym(library, "DllCreateInstance"));
    if (!entry) throw Exception("Failed to get function ptr for DllCreateInstance.\n%ls", systemError().getBuffer());
    return entry(tag.getName());
  } catch (Exception &e) {
    try {
      BaseString<unsigned short> file;
      util::ConvertUTF8toString(file, CClassRegistryFile::GetFilePath(tag));
      e.annotateFormat("Class %hs is registered in %ls", tag.getName(), file.getBuffer());
    } catch (...) {  // the note is a courtesy: the failure itself goes on unchanged
    }
    throw;
  }
}

DynamicObject *createInstance(char const *className) {
  return detail::annotated(nullptr, "quarn::createInstance(char*)",
                           [&] { return createInstance(ClassTag(className)); });
}

bool isClassNameRegistered(char const *className) {
  return detail::annotated(nullptr, "quarn::isClassNameRegistered",
                           [&] { return CClassRegistryFile::Exists(ClassTag(className)); });
}

bool ServerPathFromClassName(ClassTag const &tag, BaseString<unsigned short> &path) {
  return detail::annotated(nullptr, "quarn::ServerPathFromClassName", [&] {
    CZedClassInfo info;
    BaseString<char> file;
    if (!CClassRegistryFile::TryImportDataFile(tag, info, &file)) return false;
    if (info.server.isEmpty()) {
      BaseString<unsigned short> widePath;
      util::ConvertUTF8toString(widePath, file);
      throw Exception("Registration file %ls of class %hs names no library.", widePath.getBuffer(), tag.getName());
    }
    util::ConvertUTF8toString(path, info.server);
    return true;
  });
}

}  // namespace quarn

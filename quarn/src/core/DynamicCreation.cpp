// DynamicCreation.cpp - creating classes by name from component libraries
//
// Component libraries loaded here stay loaded for the life of the process:
// the instances they made run their code. Their handles are kept in one
// process-wide table (path -> handle), so that a library is opened once
// however often its classes are created. When nothing can be made, the
// "not registered" error says where the registration was looked for and, for
// a library that made nothing, what that library does serve.
#include <dlfcn.h>
#include <quarn/core/Annotate.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>

#include <cstdlib>
#include <mutex>
#include <string>
#include <unordered_map>

#include "Trace.h"

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

std::string nativePath(BaseString<unsigned short> const &path) {
  std::string native(util::ConvertStringtoUTF8(path).getBuffer());
  for (char &c : native)
    if (c == '\\') c = '/';
  return native;
}

// The handle of the library at `native` when this process has loaded it, else null.
void *loadedHandle(std::string const &native) {
  LoadedLibraries &libraries = loadedLibraries();
  std::lock_guard lock(libraries.mutex);
  auto found = libraries.handles.find(native);
  return found == libraries.handles.end() ? nullptr : found->second;
}

// The library at `path` (UTF-16, either separator), loaded once per process.
void *loadLibrary(BaseString<unsigned short> const &path) {
  std::string native = nativePath(path);
  LoadedLibraries &libraries = loadedLibraries();
  {
    std::lock_guard lock(libraries.mutex);
    if (auto found = libraries.handles.find(native); found != libraries.handles.end()) return found->second;
  }
  // Loading runs the library's static initialisers, which may themselves create
  // classes by name: the table is not locked meanwhile.
  dlerror();
  detail::traceClasses("loading component library %s", native.c_str());
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
    DynamicObject *made = entry(tag.getName());
    detail::traceClasses("DllCreateInstance(\"%s\") returned %s%s", tag.getName(),
                         made ? "an object of class " : "null", made ? made->getClassTag().getName() : "");
    return made;
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

namespace detail {

std::vector<std::string> explainUnresolved(ClassTag const &tag) {
  std::vector<std::string> lines;
  CZedClassInfo info;
  BaseString<char> file;
  if (!CClassRegistryFile::TryImportDataFile(tag, info, &file)) {
    Array<BaseString<char>> folders = CClassRegistryFile::GetSearchPath();
    std::string searched;
    for (BaseString<char> const &folder : folders)
      searched += (searched.empty() ? "" : ", ") + std::string(folder.getBuffer());
    std::string line = "No registration file " + std::string(tag.getName()) + ".xml in " + searched;
    if (char const *list = std::getenv(CClassRegistryFile::kSearchPathVariable); list && *list)
      line += std::string(" (") + CClassRegistryFile::kSearchPathVariable + "=" + list + ").";
    else
      line += " (the folder beside " + std::string(CClassRegistryFile::GetLibraryPath().getBuffer()) + ").";
    lines.push_back(std::move(line));
    return lines;
  }
  std::string library = info.server.isNull() ? "" : info.server.getBuffer();
  lines.push_back("Registration file " + std::string(file.getBuffer()) + " names library " + library +
                  ", which made no object of this class.");
  BaseString<unsigned short> widePath;
  util::ConvertUTF8toString(widePath, info.server);
  LibraryDescription const *description = nullptr;
  try {
    description = describeLibrary(loadedHandle(nativePath(widePath)));
  } catch (...) {  // a library whose description throws cannot say
  }
  if (!description) {
    lines.push_back("The library does not say which classes it serves.");
    return lines;
  }
  std::string served;
  for (unsigned int i = 0; i < description->classCount; ++i)
    served += (i ? ", " : "") + std::string(description->classes[i].className);
  lines.push_back("The library serves: " + (served.empty() ? std::string("no classes") : served) + ".");
  return lines;
}

void throwNotRegistered(ClassTag const &tag) {
  Exception error("Class %hs not registered.", tag.getName());
  try {
    for (std::string const &line : explainUnresolved(tag)) {
      BaseString<unsigned short> wide;
      util::ConvertUTF8toString(wide, BaseString<char>(line.c_str()));
      error.annotate(wide);
    }
  } catch (...) {  // the explanation is a courtesy: the failure itself is thrown unchanged
  }
  throw error;
}

}  // namespace detail

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

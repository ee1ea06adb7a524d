// CZedLibraryUtils.cpp - registration of a library's classes and the factory map
#include <dlfcn.h>
#include <quarn/core/Annotate.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/ClassTag.h>
#include <quarnCore/Exception.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace quarn {

namespace {
constexpr char kClassName[] = "CZedLibraryUtils";

// Set once m_libData has been destroyed (libquarn is unloading).
bool g_libDataGone = false;

struct Entry {
  CZedClassInfo info;
  CZedLibraryUtils::CreateFunction create;
  void const *owner;
};
}  // namespace

struct CZedLibraryUtils::LibraryData {
  ~LibraryData() { g_libDataGone = true; }

  std::mutex mutex;
  std::unique_ptr<std::unordered_map<int, Entry>> map;  // by class-tag id; null until initialised
  std::atomic<bool> locked{false};
};

CZedLibraryUtils::LibraryData CZedLibraryUtils::m_libData;

void CZedLibraryUtils::RegisterLibraryClasses(Array<CZedClassInfo> const &classes, char const *libraryPath) {
  for (CZedClassInfo const &info : classes) CClassRegistryFile::ValidateClassName(info.progid.getBuffer());
  for (CZedClassInfo const &info : classes) {
    if (!libraryPath || !*libraryPath) {
      CClassRegistryFile::ExportDataFile(info);
      continue;
    }
    CZedClassInfo named(info);
    named.server = libraryPath;
    CClassRegistryFile::ExportDataFile(named);
  }
}

unsigned int CZedLibraryUtils::UnregisterLibraryClasses(Array<CZedClassInfo> const &classes, char const *libraryPath) {
  unsigned int removed = 0;
  for (CZedClassInfo const &info : classes) {
    ClassTag tag(info.progid);
    CZedClassInfo registered;
    if (!CClassRegistryFile::TryImportDataFile(tag, registered)) continue;
    if (libraryPath && std::strcmp(registered.server.isNull() ? "" : registered.server.getBuffer(), libraryPath) != 0)
      continue;
    CClassRegistryFile::RemoveDataFile(tag);
    ++removed;
  }
  return removed;
}

void CZedLibraryUtils::SetLibraryIdentifier(void *address, BaseString<char> &identifier) {
  detail::annotated(kClassName, "SetLibraryIdentifier", [&] {
    Dl_info where{};
    if (!address || dladdr(address, &where) == 0 || !where.dli_fname || !*where.dli_fname)
      throw Exception("Failed to find the library that holds address %p.", address);
    BaseString<char> path("");
    if (where.dli_fname[0] != '/') {
      std::vector<char> directory(256);
      while (!getcwd(directory.data(), directory.size())) {
        if (errno != ERANGE) throw Exception("Failed to find the library that holds address %p.", address);
        directory.resize(directory.size() * 2);
      }
      path.append(directory.data(), static_cast<unsigned int>(std::strlen(directory.data())));
      path.append('/');
    }
    path.append(where.dli_fname, static_cast<unsigned int>(std::strlen(where.dli_fname)));
    identifier = std::move(path);
  });
}

DynamicObject *CZedLibraryUtils::CreateClassInstance(char const *className) {
  ClassTag tag(className);
  CreateFunction create = nullptr;
  if (!g_libDataGone) {
    std::lock_guard lock(m_libData.mutex);
    if (m_libData.map)
      if (auto found = m_libData.map->find(tag.getId()); found != m_libData.map->end()) create = found->second.create;
  }
  if (!create) throw Exception("Failed to find information for class %hs\n", tag.getName());
  return create();
}

bool CZedLibraryUtils::FindFactoryComponent(char const *className, CZedClassInfo &info) {
  ClassTag tag(className);
  if (g_libDataGone) return false;
  std::lock_guard lock(m_libData.mutex);
  if (!m_libData.map) return false;
  auto found = m_libData.map->find(tag.getId());
  if (found == m_libData.map->end()) return false;
  info = found->second.info;
  return true;
}

Array<CZedClassInfo> CZedLibraryUtils::GetFactoryComponents(void const *owner) {
  Array<CZedClassInfo> result;
  if (g_libDataGone) return result;
  {
    std::lock_guard lock(m_libData.mutex);
    if (m_libData.map)
      for (auto const &[id, entry] : *m_libData.map)
        if (!owner || entry.owner == owner) result.append(entry.info);
  }
  std::sort(result.begin(), result.end());
  return result;
}

void CZedLibraryUtils::InitFactoryComponentMap() {
  detail::annotated(kClassName, "InitFactoryComponentMap", [&] {
    if (g_libDataGone) return;
    std::lock_guard lock(m_libData.mutex);
    if (!m_libData.map) m_libData.map = std::make_unique<std::unordered_map<int, Entry>>();
  });
}

void CZedLibraryUtils::PopulateFactoryComponentMap(CZedClassInfo &info, CreateFunction create, void const *owner) {
  detail::annotated(kClassName, "PopulateFactoryClassMap", [&] {
    ClassTag tag(info.progid);
    if (!create) throw Exception("Cannot add class %hs to the factory map without a creation function.", tag.getName());
    if (info.server.isEmpty()) SetLibraryIdentifier(reinterpret_cast<void *>(create), info.server);
    InitFactoryComponentMap();
    if (g_libDataGone) return;
    std::lock_guard lock(m_libData.mutex);
    m_libData.map->insert_or_assign(tag.getId(), Entry{info, create, owner});
  });
}

void CZedLibraryUtils::ClearFactoryComponentMap() {
  detail::annotated(kClassName, "ClearFactoryComponentMap", [&] {
    if (g_libDataGone) return;
    std::unique_ptr<std::unordered_map<int, Entry>> map;
    std::lock_guard lock(m_libData.mutex);
    map.swap(m_libData.map);
  });
}

void CZedLibraryUtils::ClearFactoryComponentMap(void const *owner) {
  detail::annotated(kClassName, "ClearFactoryComponentMap", [&] {
    if (g_libDataGone) return;
    std::lock_guard lock(m_libData.mutex);
    if (m_libData.map) std::erase_if(*m_libData.map, [owner](auto const &item) { return item.second.owner == owner; });
  });
}

void CZedLibraryUtils::LockLibrary(bool lock) {
  detail::annotated(kClassName, "LockLibrary", [&] { m_libData.locked.store(lock, std::memory_order_release); });
}

bool CZedLibraryUtils::IsLibraryLocked() { return m_libData.locked.load(std::memory_order_acquire); }

bool CZedLibraryUtils::CanUnloadLibrary() { return !IsLibraryLocked(); }

}  // namespace quarn

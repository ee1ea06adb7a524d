// ComponentLibrary.cpp - a component library's class table over the factory map
#include <dlfcn.h>
#include <quarn/core/ComponentLibrary.h>

#include <cstddef>
#include <cstdio>

namespace quarn {

LibraryDescription const *describeLibrary(void *handle) {
  if (!handle) return nullptr;
  auto describe = reinterpret_cast<DescribeLibraryFunction>(dlsym(handle, "DllDescribeLibrary"));
  LibraryDescription const *description = describe ? describe() : nullptr;
  // The fields read here are the first four: anything shorter is not a description.
  constexpr std::size_t kKnown = offsetof(LibraryDescription, classes) + sizeof(DescribedClass const *);
  if (!description || description->size < kKnown || (description->classCount > 0 && !description->classes))
    return nullptr;
  return description;
}

unsigned int libraryVersion() noexcept { return QUARN_VERSION; }

BaseString<char> versionText(unsigned int version) {
  char text[48];
  std::snprintf(text, sizeof text, "%u.%u.%u", version / 10000, version / 100 % 100, version % 100);
  return BaseString<char>(text);
}

ComponentLibrary::ComponentLibrary(std::initializer_list<ComponentClass> classes) {
  m_classes.reserve(static_cast<unsigned int>(classes.size()));
  for (ComponentClass const &row : classes) m_classes.append(row);
}

ComponentLibrary::~ComponentLibrary() {
  try {
    CZedLibraryUtils::ClearFactoryComponentMap(this);
  } catch (...) {  // unloading goes on: a map that cannot be emptied is gone with the process
  }
}

void ComponentLibrary::populate() const {
  std::call_once(m_populated, [this] {
    CZedLibraryUtils::InitFactoryComponentMap();
    for (ComponentClass const &row : m_classes) {
      CZedClassInfo info(row.tag->getName(), row.description, nullptr, row.proxy);
      CZedLibraryUtils::PopulateFactoryComponentMap(info, row.create, this);
    }
  });
}

DynamicObject *ComponentLibrary::createInstance(char const *className) const {
  populate();
  ClassTag tag(className);
  for (ComponentClass const &row : m_classes)
    if (*row.tag == tag) return CZedLibraryUtils::CreateClassInstance(className);
  return nullptr;
}

Array<CZedClassInfo> ComponentLibrary::getClassInfo() const {
  populate();
  return CZedLibraryUtils::GetFactoryComponents(this);
}

void ComponentLibrary::registerClasses() const { CZedLibraryUtils::RegisterLibraryClasses(getClassInfo(), nullptr); }

LibraryDescription const *ComponentLibrary::describeFor(unsigned int quarnVersion) const {
  std::call_once(m_described, [this, quarnVersion] {
    m_describedClasses.reserve(m_classes.getSize());
    for (ComponentClass const &row : m_classes)
      m_describedClasses.append({row.tag->getName(), row.description ? row.description : "", row.proxy ? 1 : 0});
    m_description = {sizeof(LibraryDescription), quarnVersion, m_describedClasses.getSize(),
                     m_describedClasses.getBuffer()};
  });
  return &m_description;
}

unsigned int ComponentLibrary::unregisterClasses() const {
  Array<CZedClassInfo> classes = getClassInfo();
  unsigned int removed = 0;
  for (CZedClassInfo const &info : classes) {
    Array<CZedClassInfo> one;
    one.append(info);
    removed += CZedLibraryUtils::UnregisterLibraryClasses(one, info.server.getBuffer());
  }
  return removed;
}

}  // namespace quarn

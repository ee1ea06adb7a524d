// ComponentLibrary.cpp - a component library's class table over the factory map
#include <quarn/core/ComponentLibrary.h>

namespace quarn {

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

// main.cpp - uses the installed package through the umbrella header
#include <quarn/quarn.h>

#include <cstdio>

int main() {
  quarn::ClassTag tag("Marlix.obj.CountedObject");
  std::printf("%s has id %d and is bound: %s\n", tag.getName(), tag.getId(), tag.findClass() ? "yes" : "no");
  return tag.findClass() == &quarn::CountedObject::m_class ? 0 : 1;
}

// main.cpp - the example host: register a component library, create its classes by name
//
// Usage: quarn_example_host [path of the example component library]
//
// 1. Writes the registration files of the two example classes, naming the
//    component library (the files go in the "classes" folder beside libquarn).
// 2. Creates each class by name alone: the class system finds its
//    registration file, loads the library and calls its DllCreateInstance.
// 3. Asks each object for its interface by tag and uses it.
// 4. Removes the registration files again, and exits 0 (1 on any failure).
#include <cstdio>

#include <example/iCounter.h>
#include <example/iGreeting.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/Class.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Ptr.h>
#include <quarnCore/Exception.h>

namespace {

// The host knows the classes and interfaces by name only.
constexpr char kGreeter[] = "Marlix.example.Greeter";
constexpr char kCounter[] = "Marlix.example.Counter";
constexpr char kGreetingInterface[] = "Marlix.interface.iGreeting";
constexpr char kCounterInterface[] = "Marlix.interface.iCounter";

void registerExample(quarn::Array<quarn::CZedClassInfo> const &classes, char const *library) {
  quarn::CZedLibraryUtils::RegisterLibraryClasses(classes, library);
  for (quarn::CZedClassInfo const &info : classes)
    std::printf("registered %s -> %s\n  in %s\n", info.progid.getBuffer(), library,
                quarn::CClassRegistryFile::GetFilePath(quarn::ClassTag(info.progid)).getBuffer());
}

void useGreeter() {
  // By name: the bound class if the library is loaded already, else the library
  // named by the registration file. The object comes with a count of 0.
  quarn::Object *object = quarn::Class::getClassInstance(quarn::ClassTag(kGreeter));
  // getAs throws NotImplementedException if the object lacks the interface.
  auto *greeting = static_cast<example::iGreeting *>(object->getAs(quarn::ClassTag(kGreetingInterface)));
  quarn::Ptr<example::iGreeting> held(greeting);  // the one reference; released at the end of scope
  std::printf("%s says: %s\n", object->getClassTag().getName(), held->greet("quarn").getBuffer());
}

void useCounters() {
  // createInstance goes to the component library every time (no class lookup first).
  quarn::Ptr<quarn::DynamicObject> first(quarn::createInstance(kCounter));
  quarn::Ptr<quarn::DynamicObject> second(quarn::createInstance(kCounter));
  auto *a = static_cast<example::iCounter *>(first->getAs(quarn::ClassTag(kCounterInterface)));
  auto *b = static_cast<example::iCounter *>(second->getAs(quarn::ClassTag(kCounterInterface)));
  for (int i = 0; i < 3; ++i) a->increment();
  b->increment();
  std::printf("%s: first counted to %d, second to %d\n", kCounter, a->getCount(), b->getCount());
}

// Records of values: once the value classes are in the library, this is where
// the demo builds a data record of typed values (IntegerValue, StringValue,
// ...) from the components' results, prints its XML text and serialises it.
void useValues() {}

}  // namespace

int main(int argc, char **argv) {
  char const *library = argc > 1 ? argv[1] : QUARN_EXAMPLE_COMPONENT;
  quarn::Array<quarn::CZedClassInfo> classes;
  classes.append(quarn::CZedClassInfo(kGreeter, "Says hello to whoever it is given", library));
  classes.append(quarn::CZedClassInfo(kCounter, "Counts, one instance at a time", library));
  int status = 0;
  try {
    registerExample(classes, library);
    useGreeter();
    useCounters();
    useValues();
  } catch (std::exception const &e) {
    std::fprintf(stderr, "quarn_example_host: %s\n", e.what());
    status = 1;
  }
  try {
    unsigned int removed = quarn::CZedLibraryUtils::UnregisterLibraryClasses(classes, library);
    std::printf("unregistered %u classes\n", removed);
  } catch (std::exception const &e) {
    std::fprintf(stderr, "quarn_example_host: %s\n", e.what());
    status = 1;
  }
  return status;
}

// host.cpp - a host of the deployed example: creates a class by name, uses it by type
//
// Usage: deployed_host CLASS. Prints the greeting of a greeter (through
// example::iGreeting, linked from the example's interface library), "made
// CLASS" for another class, or the error (exit status 1).
#include <example/iGreeting.h>
#include <quarn/quarn.h>

#include <cstdio>

int main(int argc, char **argv) {
  if (argc != 2) return 2;
  try {
    quarn::Ptr<quarn::CountedObject> object(
        quarn::Class::getClassInstance(quarn::ClassTag(argv[1]))->as<quarn::CountedObject>());
    if (auto *greeting = object->as<example::iGreeting>())
      std::printf("%s\n", greeting->greet("deployer").getBuffer());
    else
      std::printf("made %s\n", object->getClassTag().getName());
    return 0;
  } catch (std::exception const &e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
}

// ModuleProbe.cpp - loads and unloads libquarn twice in one process
//
// Usage: quarn_module_probe LIBQUARN CHECKER COMPONENTS
//
// Each round: load libquarn (its start-up interns every name and binds every
// class object), load the checker library and check the catalogue; load the
// test component library and see its class bound, unload it and see the class
// unbound; leave an instance in a value pool; then unload the checker and
// libquarn and make sure libquarn is really gone (a pool that unloading did
// not empty is a leak, which the sanitizer build reports). The second round must find a fresh registry (the same number
// of names as the first). Finally the leak detectors that remain (quarnCore's
// list, which libquarn's detectors left at unload) are walked. Prints "ok"
// and exits 0, or prints the first problem and exits 1.
#include <dlfcn.h>
#include <quarnCore/LeakDetector.h>

#include <cstdio>

namespace {

char const kWidget[] = "Marlix.testlib.Widget";

bool problem(char const *what, char const *detail = nullptr) {
  std::fprintf(stderr, "quarn_module_probe: %s%s%s\n", what, detail ? ": " : "", detail ? detail : "");
  return false;
}

bool isLoaded(char const *path) {
  void *handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

template <class F>
bool symbol(void *library, char const *name, F &function) {
  function = reinterpret_cast<F>(dlsym(library, name));
  return function != nullptr || problem("missing symbol", name);
}

bool round(char const *quarn, char const *checkerPath, char const *componentsPath, int &tags) {
  void *library = dlopen(quarn, RTLD_NOW | RTLD_LOCAL);
  if (!library) return problem("cannot load libquarn", dlerror());
  void *checker = dlopen(checkerPath, RTLD_NOW | RTLD_LOCAL);
  if (!checker) return problem("cannot load the checker", dlerror());
  char const *(*checkCatalogue)() = nullptr;
  int (*isBound)(char const *) = nullptr;
  int (*numClassTags)() = nullptr;
  int (*fillAPool)(char const *) = nullptr;
  if (!symbol(checker, "quarnCheckCatalogue", checkCatalogue) || !symbol(checker, "quarnIsBound", isBound) ||
      !symbol(checker, "quarnNumClassTags", numClassTags) || !symbol(checker, "quarnFillAPool", fillAPool))
    return false;

  if (char const *what = checkCatalogue()) return problem("after start-up", what);
  int count = numClassTags();
  if (tags >= 0 && count != tags) return problem("the reloaded registry is not fresh");
  tags = count;
  if (isBound(kWidget)) return problem("a component's class is bound before its library is loaded");

  void *components = dlopen(componentsPath, RTLD_NOW | RTLD_LOCAL);
  if (!components) return problem("cannot load the test components", dlerror());
  if (!isBound(kWidget)) return problem("loading a component library did not bind its class");
  dlclose(components);
  if (isLoaded(componentsPath)) return problem("the test component library stayed loaded");
  if (isBound(kWidget)) return problem("a class object stayed bound after its library unloaded");

  if (!fillAPool("Marlix.value.IntegerValue")) return problem("Marlix.value.IntegerValue is not a pooled class");
  dlclose(checker);
  dlclose(library);
  if (isLoaded(quarn)) return problem("libquarn stayed loaded");
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: quarn_module_probe LIBQUARN CHECKER COMPONENTS\n");
    return 2;
  }
  int tags = -1;
  for (int i = 0; i < 2; ++i)
    if (!round(argv[1], argv[2], argv[3], tags)) return 1;
  quarn::BaseString<unsigned short> report;
  quarn::LeakDetector::report(report);
  if (quarn::LeakDetector::getTotalLiveCount() != 0) {
    problem("instances are still counted as alive");
    return 1;
  }
  std::printf("ok\n");
  return 0;
}

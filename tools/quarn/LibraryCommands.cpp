// LibraryCommands.cpp - the commands that load a library first: inspect and register
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/ComponentLibrary.h>

#include <filesystem>
#include <ostream>

#include "Commands.h"
#include "LibraryProbe.h"

namespace quarn::tool {

namespace {

std::string absolutePath(std::string const &path) { return std::filesystem::absolute(path).lexically_normal().string(); }

// "; it serves: A, B" or "; it does not say which classes it serves".
std::string servedNote(LibraryProbe const &probe) {
  if (!probe.described) return "; it does not say which classes it serves";
  return probe.classes.empty() ? "; it serves no classes" : "; it serves: " + probe.servedList();
}

ServedClass const *describedClass(LibraryProbe const &probe, std::string const &name) {
  for (ServedClass const &c : probe.classes)
    if (ClassTag(c.name.c_str()) == ClassTag(name.c_str())) return &c;
  return nullptr;
}

void writeRegistration(CZedClassInfo const &info, std::ostream &out) {
  Array<CZedClassInfo> one;
  one.append(info);
  CZedLibraryUtils::RegisterLibraryClasses(one, nullptr);
  out << "Registered " << info.progid.getBuffer() << " (" << info.server.getBuffer() << ") in "
      << CClassRegistryFile::GetFilePath(ClassTag(info.progid)).getBuffer() << '\n';
}

}  // namespace

int inspect(Arguments const &args, std::ostream &out, std::ostream &err) {
  std::string library = absolutePath(args.positional[0]);
  LibraryProbe probe = probeLibrary(library, {});
  if (!probe.usable()) return fail(err, "inspect", "cannot use " + library + ": " + probe.problem);
  if (!probe.described) {
    out << library << ": a component library that does not describe itself (no DllDescribeLibrary);\n"
        << "register its classes one at a time: quarn register CLASS " << library << '\n';
    return kOk;
  }
  out << library << ": a component library built against libquarn " << versionText(probe.version).getBuffer()
      << ", serving " << probe.classes.size() << (probe.classes.size() == 1 ? " class" : " classes") << ":\n";
  for (ServedClass const &c : probe.classes)
    out << c.name << '\t' << c.description << (c.proxy ? "\tproxy" : "") << '\n';
  return kOk;
}

int registerClasses(Arguments const &args, std::ostream &out, std::ostream &err) {
  bool const all = args.has("--all"), check = !args.has("--no-check");
  if (all != (args.positional.size() == 1))
    return fail(err, "register", "expected register CLASS LIBRARY or register LIBRARY --all (see quarn register --help)",
                kUsage);
  if (all && !check) return fail(err, "register", "--all loads the library, so it cannot go with --no-check", kUsage);
  std::string const library = absolutePath(args.positional[all ? 0 : 1]);
  if (!check) {
    if (!std::filesystem::exists(library)) return fail(err, "register", "library not found: " + library);
    writeRegistration(CZedClassInfo(args.positional[0].c_str(), args.description.c_str(), library.c_str(), args.proxy),
                      out);
    return kOk;
  }
  std::string const &className = all ? std::string() : args.positional[0];
  if (!all) CClassRegistryFile::ValidateClassName(className.c_str());
  LibraryProbe probe = probeLibrary(library, all ? std::vector<std::string>{} : std::vector{className}, all);
  std::string const what = all ? "the classes of " + library : className;
  if (!probe.usable()) return fail(err, "register", "cannot register " + what + ": " + library + ": " + probe.problem);
  if (all) {
    if (!probe.described)
      return fail(err, "register", "cannot register " + what + ": it does not describe itself (no DllDescribeLibrary); " +
                                       "register each class by name: quarn register CLASS " + library);
    if (probe.classes.empty()) return fail(err, "register", "cannot register " + what + ": it serves no classes");
  }
  std::vector<ServedClass> chosen;
  if (all) {
    chosen = probe.classes;
  } else {
    ServedClass const *described = describedClass(probe, className);
    chosen.push_back({className, described ? described->description : "", described && described->proxy});
  }
  for (ServedClass const &c : chosen) {
    auto answer = probe.made.find(c.name);
    std::string const made = answer == probe.made.end() ? "gave no answer" : answer->second;
    if (!made.empty())
      return fail(err, "register", "cannot register " + c.name + ": " + library + " does not serve it (DllCreateInstance " +
                                       made + ")" + servedNote(probe));
  }
  for (ServedClass const &c : chosen) {
    std::string const &description = args.description.empty() ? c.description : args.description;
    writeRegistration(CZedClassInfo(c.name.c_str(), description.c_str(), library.c_str(), c.proxy || args.proxy), out);
  }
  return kOk;
}

}  // namespace quarn::tool

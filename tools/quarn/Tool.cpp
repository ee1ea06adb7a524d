// Tool.cpp - the commands of the quarn command-line tool
#include "Tool.h"

#include "Dump.h"

#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/ClassTag.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace quarn::tool {

namespace {

enum Status { kOk = 0, kFailed = 1, kUsage = 2 };

struct Arguments {
  std::vector<std::string> positional;
  std::string description;
  bool proxy = false;
  bool help = false;
};

struct Command {
  char const *name;
  char const *synopsis;
  char const *help;
  std::size_t positionals;  // how many positional arguments it takes
  bool takesOptions;        // --description and --proxy
  int (*run)(Arguments const &, std::ostream &out, std::ostream &err);
};

// "quarn <command>: <text>" on one line.
int fail(std::ostream &err, char const *command, std::string const &text, int status = kFailed) {
  err << "quarn " << command << ": " << text << '\n';
  return status;
}

// An exception's message on one line: the annotation lines that record where
// it passed are dropped, the remaining lines are joined.
std::string oneLine(char const *message) {
  std::string line, part;
  auto flush = [&] {
    static constexpr char kPassedThrough[] = "Tessary exception caught";
    bool annotation = part.size() >= std::strlen(kPassedThrough) &&
                      part.compare(part.size() - std::strlen(kPassedThrough), std::string::npos, kPassedThrough) == 0;
    if (!part.empty() && !annotation) line += (line.empty() ? "" : " ") + part;
    part.clear();
  };
  for (char const *p = message; *p; ++p) {
    if (*p == '\n')
      flush();
    else
      part += *p;
  }
  flush();
  return line;
}

int registerClass(Arguments const &args, std::ostream &out, std::ostream &err) {
  std::string const &className = args.positional[0];
  std::filesystem::path library = std::filesystem::absolute(args.positional[1]).lexically_normal();
  if (!std::filesystem::exists(library)) return fail(err, "register", "library not found: " + library.string());
  Array<CZedClassInfo> classes;
  classes.append(CZedClassInfo(className.c_str(), args.description.c_str(), library.c_str(), args.proxy));
  CZedLibraryUtils::RegisterLibraryClasses(classes, nullptr);
  out << "Registered " << className << " (" << library.string() << ") in "
      << CClassRegistryFile::GetFilePath(ClassTag(className.c_str())).getBuffer() << '\n';
  return kOk;
}

int unregisterClass(Arguments const &args, std::ostream &out, std::ostream &err) {
  ClassTag tag(args.positional[0].c_str());
  BaseString<char> path = CClassRegistryFile::GetFilePath(tag);
  if (!CClassRegistryFile::Exists(tag)) return fail(err, "unregister", args.positional[0] + " is not registered");
  CClassRegistryFile::RemoveDataFile(tag);
  out << "Unregistered " << args.positional[0] << " (removed " << path.getBuffer() << ")\n";
  return kOk;
}

int which(Arguments const &args, std::ostream &out, std::ostream &err) {
  CZedClassInfo info;
  BaseString<char> path;
  if (!CClassRegistryFile::TryImportDataFile(ClassTag(args.positional[0].c_str()), info, &path))
    return fail(err, "which", args.positional[0] + " is not registered");
  if (info.server.isEmpty())
    return fail(err, "which", std::string("registration file ") + path.getBuffer() + " names no library");
  out << info.server.getBuffer() << '\n';
  return kOk;
}

// The class names a registration file may belong to: "<name>.xml" is the
// plain file of <name> or version N of the name before a trailing ".N".
std::vector<std::string> candidateNames(std::string const &fileName) {
  std::string base = fileName.substr(0, fileName.size() - 4);
  std::vector<std::string> names{base};
  std::size_t dot = base.rfind('.');
  if (dot != std::string::npos && dot > 0 && dot + 1 < base.size() &&
      std::all_of(base.begin() + static_cast<std::ptrdiff_t>(dot) + 1, base.end(),
                  [](char c) { return c >= '0' && c <= '9'; }))
    names.push_back(base.substr(0, dot));
  return names;
}

int listClasses(Arguments const &, std::ostream &out, std::ostream &err) {
  std::filesystem::path directory(CClassRegistryFile::GetClassesDirectory().getBuffer());
  std::error_code error;
  if (!std::filesystem::is_directory(directory, error)) return kOk;  // nothing was ever registered
  std::vector<std::string> names;
  for (auto const &entry : std::filesystem::directory_iterator(directory)) {
    std::string file = entry.path().filename().string();
    if (entry.is_regular_file(error) && file.size() > 4 && file.compare(file.size() - 4, 4, ".xml") == 0)
      for (std::string &name : candidateNames(file)) names.push_back(std::move(name));
  }
  // A class is listed once, under its interned spelling, when the file in use
  // for that name exists and was written for it.
  std::map<std::string, CZedClassInfo> listed;
  int status = kOk;
  for (std::string const &name : names) {
    try {
      CClassRegistryFile::ValidateClassName(name.c_str());
    } catch (Exception const &) {
      continue;  // a file no class name can lead to
    }
    ClassTag tag(name.c_str());
    CZedClassInfo info;
    try {
      if (listed.count(tag.getName()) || !CClassRegistryFile::TryImportDataFile(tag, info)) continue;
    } catch (Exception const &e) {
      status = fail(err, "classes", oneLine(e.what()));
      listed.emplace(tag.getName(), CZedClassInfo());  // reported once
      continue;
    }
    if (ClassTag(info.progid) == tag) listed.emplace(tag.getName(), info);
  }
  for (auto const &[name, info] : listed) {
    if (info.progid.isEmpty()) continue;  // unreadable, reported above
    out << name << '\t' << info.server.getBuffer() << (info.proxy ? "\tproxy" : "") << '\n';
  }
  return status;
}

Command const kCommands[] = {
    {"register", "register CLASS LIBRARY [--description TEXT] [--proxy]",
     "Writes the registration file of CLASS, naming LIBRARY (made absolute) as the\n"
     "component library that implements it. --proxy marks LIBRARY as a proxy.\n",
     2, true, registerClass},
    {"unregister", "unregister CLASS",
     "Removes the registration file of CLASS in use (an older version, if any,\ncomes into use).\n", 1, false,
     unregisterClass},
    {"which", "which CLASS", "Prints the component library registered for CLASS.\n", 1, false, which},
    {"classes", "classes", "Lists the registered classes, each with its library (and \"proxy\").\n", 0, false,
     listClasses},
};

void printUsage(std::ostream &out) {
  out << "Usage: quarn COMMAND [ARGUMENTS]\n\nCommands:\n";
  for (Command const &command : kCommands) out << "  quarn " << command.synopsis << '\n';
  out << "  quarn dump FILE [--raw]\n";
  out << "\nRegistration files live in the folder \"classes\" beside libquarn.\n"
         "Run quarn COMMAND --help for the details of one command.\n";
}

// Fills `args`; returns an error text for a command line it cannot take.
std::string parse(Command const &command, int argc, char **argv, Arguments &args) {
  bool optionsEnded = false;
  for (int i = 2; i < argc; ++i) {
    std::string arg = argv[i];
    if (optionsEnded || arg.empty() || arg[0] != '-') {
      args.positional.push_back(arg);
    } else if (arg == "--") {
      optionsEnded = true;
    } else if (arg == "--help" || arg == "-h") {
      args.help = true;
    } else if (command.takesOptions && arg == "--proxy") {
      args.proxy = true;
    } else if (command.takesOptions && arg == "--description") {
      if (i + 1 >= argc) return "--description needs a TEXT";
      args.description = argv[++i];
    } else if (command.takesOptions && arg.rfind("--description=", 0) == 0) {
      args.description = arg.substr(std::strlen("--description="));
    } else {
      return "unknown option '" + arg + "'";
    }
  }
  if (!args.help && args.positional.size() != command.positionals) return std::string("expected ") + command.synopsis;
  return {};
}

}  // namespace

int run(int argc, char **argv, std::ostream &out, std::ostream &err) {
  if (argc < 2) {
    printUsage(err);
    return kUsage;
  }
  std::string name = argv[1];
  if (name == "--help" || name == "-h" || name == "help") {
    printUsage(out);
    return kOk;
  }
  if (name == "dump") return dump(argc, argv, out, err);
  auto command =
      std::find_if(std::begin(kCommands), std::end(kCommands), [&](Command const &c) { return name == c.name; });
  if (command == std::end(kCommands)) {
    err << "quarn: unknown command '" << name << "' (see quarn --help)\n";
    return kUsage;
  }
  Arguments args;
  if (std::string problem = parse(*command, argc, argv, args); !problem.empty())
    return fail(err, command->name, problem + " (see quarn " + command->name + " --help)", kUsage);
  if (args.help) {
    out << "Usage: quarn " << command->synopsis << "\n\n" << command->help;
    return kOk;
  }
  try {
    return command->run(args, out, err);
  } catch (std::exception const &e) {
    return fail(err, command->name, oneLine(e.what()));
  }
}

}  // namespace quarn::tool

// Tool.cpp - the commands of the quarn command-line tool
//
// The command table: each command is one row and one function (Commands.h).
#include "Tool.h"

#include "Dump.h"

#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/ComponentLibrary.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <string>

#include "Commands.h"

namespace quarn::tool {

namespace {

struct Command {
  char const *name;
  char const *synopsis;
  char const *help;
  std::size_t positionals;  // how many positional arguments it takes (at most)
  bool takesOptions;        // --description and --proxy
  int (*run)(Arguments const &, std::ostream &out, std::ostream &err);
  char const *const *flags = nullptr;  // further flags it takes, null-terminated
  std::size_t optionalPositionals = 0;  // how many of the positionals may be left out
};

char const *const kRegisterFlags[] = {"--all", "--no-check", nullptr};
char const *const kDumpFlags[] = {"--raw", nullptr};

Command const kCommands[] = {
    {"register", "register CLASS LIBRARY [--description TEXT] [--proxy] [--no-check] | register LIBRARY --all",
     "Writes the registration file of CLASS, naming LIBRARY (made absolute) as the\n"
     "component library that implements it. LIBRARY is first loaded in a separate\n"
     "process, and CLASS is registered only when its DllCreateInstance makes an\n"
     "object of it; the description (unless given) is the one the library gives.\n"
     "With --all, every class the library describes (DllDescribeLibrary) is\n"
     "registered. --proxy marks LIBRARY as a proxy. --no-check writes the file\n"
     "without loading LIBRARY (for a library that cannot be loaded here).\n",
     2, true, registerClasses, kRegisterFlags, 1},
    {"unregister", "unregister CLASS",
     "Removes the registration file of CLASS in use (an older version, if any,\ncomes into use).\n", 1, false,
     unregisterClass},
    {"which", "which CLASS",
     "Prints the component library registered for CLASS. Exit status 1 when CLASS\n"
     "is not registered (saying which folders were searched) or its library is gone.\n",
     1, false, which},
    {"classes", "classes",
     "Lists the registered classes: name, library and description (and \"proxy\").\n"
     "An entry that cannot work is listed with \"BROKEN: <why>\" instead of a\n"
     "description, and makes the exit status 1.\n",
     0, false, listClasses},
    {"inspect", "inspect LIBRARY",
     "Loads LIBRARY in a separate process and lists the classes it serves, with\n"
     "their descriptions and the libquarn it was built against, or says why it\n"
     "cannot be used (not a shared object, a missing symbol, no DllCreateInstance,\n"
     "built for another libquarn).\n",
     1, false, inspect},
    {"check", "check",
     "Goes through every registration file and reports each problem on one line:\n"
     "a file that cannot be read, wrong or missing elements, a library that no\n"
     "longer exists or no longer serves the class. Exit status 1 when any.\n",
     0, false, check},
    {"dump", "dump FILE [--raw]", kDumpHelp, 1, false, dump, kDumpFlags},
};

void printUsage(std::ostream &out) {
  out << "Usage: quarn COMMAND [ARGUMENTS]\n\nCommands:\n";
  for (Command const &command : kCommands) out << "  quarn " << command.synopsis << '\n';
  out << "  quarn --version\n"
         "\nRegistration files live in the folder \"classes\" beside libquarn, or in the\n"
         "folders of QUARN_CLASSES_PATH (separated by ':'; the first is written; an empty\n"
         "entry stands for the folder beside libquarn). QUARN_TRACE_CLASSES=1 traces how\n"
         "a host finds a class. Run quarn help COMMAND for the details of one command.\n";
}

Command const *findCommand(std::string const &name) {
  auto command =
      std::find_if(std::begin(kCommands), std::end(kCommands), [&](Command const &c) { return name == c.name; });
  return command == std::end(kCommands) ? nullptr : command;
}

int printHelp(Command const &command, std::ostream &out) {
  out << "Usage: quarn " << command.synopsis << "\n\n" << command.help;
  return kOk;
}

bool takesFlag(Command const &command, std::string const &arg) {
  for (char const *const *flag = command.flags; flag && *flag; ++flag)
    if (arg == *flag) return true;
  return false;
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
    } else if (takesFlag(command, arg)) {
      args.flags.push_back(arg);
    } else {
      return "unknown option '" + arg + "'";
    }
  }
  std::size_t const given = args.positional.size();
  if (!args.help && (given > command.positionals || given + command.optionalPositionals < command.positionals))
    return std::string("expected ") + command.synopsis;
  return {};
}

}  // namespace

int run(int argc, char **argv, std::ostream &out, std::ostream &err) {
  if (argc < 2) {
    printUsage(err);
    return kUsage;
  }
  std::string name = argv[1];
  if (name == "--version") {
    out << "quarn " << versionText(libraryVersion()).getBuffer() << " (libquarn "
        << CClassRegistryFile::GetLibraryPath().getBuffer() << ")\n";
    return kOk;
  }
  if (name == "help" && argc > 2) {
    Command const *command = findCommand(argv[2]);
    if (!command) {
      err << "quarn: unknown command '" << argv[2] << "' (see quarn --help)\n";
      return kUsage;
    }
    return printHelp(*command, out);
  }
  if (name == "--help" || name == "-h" || name == "help") {
    printUsage(out);
    return kOk;
  }
  Command const *command = findCommand(name);
  if (!command) {
    err << "quarn: unknown command '" << name << "' (see quarn --help)\n";
    return kUsage;
  }
  Arguments args;
  if (std::string problem = parse(*command, argc, argv, args); !problem.empty())
    return fail(err, command->name, problem + " (see quarn " + command->name + " --help)", kUsage);
  if (args.help) return printHelp(*command, out);
  try {
    return command->run(args, out, err);
  } catch (std::exception const &e) {
    return fail(err, command->name, oneLine(e.what()));
  }
}

}  // namespace quarn::tool

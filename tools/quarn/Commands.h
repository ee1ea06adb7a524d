// Commands.h - what the tool's commands share: their arguments and how they report
//
// Each command is one function `int command(Arguments const &, std::ostream
// &out, std::ostream &err)` listed in the command table of Tool.cpp. Results
// go to `out`; each error is one line on `err`, "quarn <command>: <text>".
#pragma once

#include <algorithm>
#include <iosfwd>
#include <string>
#include <vector>

namespace quarn::tool {

enum Status { kOk = 0, kFailed = 1, kUsage = 2 };

struct Arguments {
  std::vector<std::string> positional;
  std::string description;
  bool proxy = false;
  bool help = false;
  std::vector<std::string> flags;  // the command's own flags that were given ("--all")

  bool has(char const *flag) const { return std::find(flags.begin(), flags.end(), flag) != flags.end(); }
};

/// Writes "quarn <command>: <text>" on one line and returns `status`.
int fail(std::ostream &err, char const *command, std::string const &text, int status = kFailed);
/// An exception's message on one line: the annotation lines that only record
/// where it passed are dropped, the remaining lines joined with a blank.
std::string oneLine(char const *message);

// The commands (RegistryCommands.cpp, LibraryCommands.cpp).
int registerClasses(Arguments const &args, std::ostream &out, std::ostream &err);
int unregisterClass(Arguments const &args, std::ostream &out, std::ostream &err);
int which(Arguments const &args, std::ostream &out, std::ostream &err);
int listClasses(Arguments const &args, std::ostream &out, std::ostream &err);
int check(Arguments const &args, std::ostream &out, std::ostream &err);
int inspect(Arguments const &args, std::ostream &out, std::ostream &err);

}  // namespace quarn::tool

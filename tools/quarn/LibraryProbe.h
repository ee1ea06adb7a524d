// LibraryProbe.h - loading a component library in a child process, to see what it serves
//
// The tool never loads a library into its own process: a library's static
// initialisers may crash, print, or refuse to unload. probeLibrary forks;
// the child loads the library, reads its self-description
// (DllDescribeLibrary), asks its DllCreateInstance for each class name given
// (and, on request, for every class it describes), and reports back through a
// pipe. A library that crashes the child is reported, not fatal.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace quarn::tool {

struct ServedClass {
  std::string name, description;
  bool proxy = false;
};

struct LibraryProbe {
  /// Empty when the library loaded as a component library; else why it cannot
  /// be used, as a phrase: "no such file", "it is not a shared object (no ELF
  /// header)", "it does not load: ...", "it exports no DllCreateInstance",
  /// "it was built for libquarn X, and this is libquarn Y", "loading it crashed (...)".
  std::string problem;
  /// Whether it exports DllDescribeLibrary (then `version` and `classes` hold what it says).
  bool described = false;
  unsigned int version = 0;
  std::vector<ServedClass> classes;
  /// For each class name asked: "" when DllCreateInstance made an object; else
  /// "returned null" or "threw: <message>".
  std::map<std::string, std::string> made;

  bool usable() const { return problem.empty(); }
  /// The described class names, ", "-separated, or "" when it does not describe itself.
  std::string servedList() const;
};

/// Probes the library at `path` (see the file comment); `names` are the
/// classes to try, and `tryDescribed` adds every class the library describes.
LibraryProbe probeLibrary(std::string const &path, std::vector<std::string> const &names, bool tryDescribed = false);

}  // namespace quarn::tool

// LibraryProbe.cpp - fork, load, describe, try, report through a pipe
#include "LibraryProbe.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <quarn/core/ComponentLibrary.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Ptr.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

namespace quarn::tool {

namespace {

// The child's report: fields ended by NUL. Records: "problem" TEXT;
// "version" N; "class" NAME DESCRIPTION PROXY; "made" NAME RESULT.
void field(std::string &report, std::string const &text) {
  report += text;
  report += '\0';
}

// dlerror's text without the path it starts with, and with a mangled
// undefined symbol shown demangled as well.
std::string readableLoadError(char const *text, std::string const &path) {
  std::string message = text ? text : "unknown reason";
  if (message.rfind(path + ": ", 0) == 0) message.erase(0, path.size() + 2);
  static constexpr char kUndefined[] = "undefined symbol: ";
  std::size_t at = message.find(kUndefined);
  if (at == std::string::npos) return message;
  std::size_t start = at + std::strlen(kUndefined);
  std::size_t end = message.find_first_of(", ", start);
  std::string symbol = message.substr(start, end == std::string::npos ? std::string::npos : end - start);
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> plain(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status),
                                                    &std::free);
  if (status == 0 && plain) message.replace(start, symbol.size(), std::string(plain.get()) + " (" + symbol + ")");
  return message;
}

std::string tryCreate(DynamicObject *(*entry)(char const *), std::string const &name) {
  try {
    Ptr<DynamicObject> made(entry(name.c_str()));  // released again at once
    return made ? "" : "returned null";
  } catch (std::exception const &e) {
    return std::string("threw: ") + e.what();
  } catch (...) {
    return "threw something that is not an exception";
  }
}

// What the child does: everything it learns goes into the report.
std::string childReport(std::string const &path, std::vector<std::string> const &names, bool tryDescribed) {
  std::string report;
  dlerror();
  void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    field(report, "problem");
    field(report, "it does not load: " + readableLoadError(dlerror(), path));
    return report;
  }
  auto entry = reinterpret_cast<DynamicObject *(*)(char const *)>(dlsym(handle, "DllCreateInstance"));
  if (!entry) {
    field(report, "problem");
    field(report, "it is not a component library: it exports no DllCreateInstance");
    return report;
  }
  std::vector<std::string> tried = names;
  try {
    if (LibraryDescription const *description = describeLibrary(handle)) {
      field(report, "version");
      field(report, std::to_string(description->quarnVersion));
      for (unsigned int i = 0; i < description->classCount; ++i) {
        DescribedClass const &c = description->classes[i];
        field(report, "class");
        field(report, c.className ? c.className : "");
        field(report, c.description ? c.description : "");
        field(report, c.proxy ? "1" : "0");
        if (tryDescribed && c.className) tried.push_back(c.className);
      }
    }
  } catch (std::exception const &e) {
    field(report, "problem");
    field(report, std::string("its DllDescribeLibrary threw: ") + e.what());
    return report;
  }
  for (std::string const &name : tried) {
    field(report, "made");
    field(report, name);
    field(report, tryCreate(entry, name));
  }
  return report;
}

// Checks that need no loading: the file exists, is a file, and is ELF.
std::string fileProblem(std::string const &path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno == ENOENT ? "no such file" : std::strerror(errno);
  if (S_ISDIR(status.st_mode)) return "it is a directory, not a shared object";
  if (!S_ISREG(status.st_mode)) return "it is not a regular file";
  char magic[4] = {};
  std::ifstream in(path, std::ios::binary);
  if (!in.read(magic, 4) || std::memcmp(magic, "\x7f" "ELF", 4) != 0) return "it is not a shared object (no ELF header)";
  return {};
}

void parseReport(std::string const &report, LibraryProbe &probe) {
  std::vector<std::string> fields;
  for (std::size_t start = 0, end; (end = report.find('\0', start)) != std::string::npos; start = end + 1)
    fields.push_back(report.substr(start, end - start));
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::string const &kind = fields[i];
    auto take = [&](std::size_t n) { return i + n < fields.size(); };
    if (kind == "problem" && take(1)) {
      probe.problem = fields[++i];
    } else if (kind == "version" && take(1)) {
      probe.described = true;
      probe.version = static_cast<unsigned int>(std::strtoul(fields[++i].c_str(), nullptr, 10));
    } else if (kind == "class" && take(3)) {
      probe.classes.push_back({fields[i + 1], fields[i + 2], fields[i + 3] == "1"});
      i += 3;
    } else if (kind == "made" && take(2)) {
      probe.made[fields[i + 1]] = fields[i + 2];
      i += 2;
    }
  }
}

}  // namespace

std::string LibraryProbe::servedList() const {
  std::string list;
  for (ServedClass const &c : classes) list += (list.empty() ? "" : ", ") + c.name;
  return list;
}

LibraryProbe probeLibrary(std::string const &path, std::vector<std::string> const &names, bool tryDescribed) {
  LibraryProbe probe;
  if (probe.problem = fileProblem(path); !probe.problem.empty()) return probe;
  int fds[2];
  if (::pipe(fds) != 0) {
    probe.problem = std::string("cannot start a process to load it: ") + std::strerror(errno);
    return probe;
  }
  pid_t child = ::fork();
  if (child < 0) {
    probe.problem = std::string("cannot start a process to load it: ") + std::strerror(errno);
    ::close(fds[0]);
    ::close(fds[1]);
    return probe;
  }
  if (child == 0) {
    ::close(fds[0]);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);  // whatever the library prints stays out of the tool's results
    std::string report = childReport(path, names, tryDescribed);
    for (std::size_t done = 0; done < report.size();) {
      ssize_t n = ::write(fds[1], report.data() + done, report.size() - done);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) ::_exit(2);
      done += static_cast<std::size_t>(n);
    }
    ::_exit(0);  // no destructors, no exit handlers: the parent owns those
  }
  ::close(fds[1]);
  std::string report;
  char buffer[4096];
  for (;;) {
    ssize_t n = ::read(fds[0], buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    report.append(buffer, static_cast<std::size_t>(n));
  }
  ::close(fds[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) {
    probe.problem = std::string("loading it crashed (") + strsignal(WTERMSIG(status)) + ")";
    return probe;
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
    probe.problem = "loading it ended the process (exit status " + std::to_string(WEXITSTATUS(status)) + ")";
    return probe;
  }
  parseReport(report, probe);
  if (probe.problem.empty() && probe.described) {
    unsigned int running = libraryVersion();
    if (probe.version / 10000 != running / 10000 || probe.version > running)
      probe.problem = std::string("it was built for libquarn ") + versionText(probe.version).getBuffer() +
                      ", and this is libquarn " + versionText(running).getBuffer();
  }
  return probe;
}

}  // namespace quarn::tool

// RegistryCommands.cpp - the commands over the registration files: unregister, which, classes, check
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/DynamicCreation.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <ostream>
#include <utility>

#include "Commands.h"
#include "LibraryProbe.h"

namespace quarn::tool {

namespace {

std::string text(BaseString<char> const &s) { return s.isNull() ? std::string() : std::string(s.getBuffer()); }

// A description on one line of a table: control characters become blanks.
std::string cell(BaseString<char> const &s) {
  std::string out = text(s);
  for (char &c : out)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return out;
}

std::string joined(std::vector<std::string> const &lines) {
  std::string out;
  for (std::string const &line : lines) out += (out.empty() ? "" : " ") + line;
  return out;
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

bool isValidName(std::string const &name) {
  try {
    CClassRegistryFile::ValidateClassName(name.c_str());
    return true;
  } catch (Exception const &) {
    return false;
  }
}

// The registration files of every folder searched, in order, each sorted by name.
std::vector<std::filesystem::path> registrationFiles() {
  std::vector<std::filesystem::path> files;
  Array<BaseString<char>> folders = CClassRegistryFile::GetSearchPath();
  for (BaseString<char> const &folder : folders) {
    std::error_code error;
    std::vector<std::filesystem::path> here;
    for (std::filesystem::directory_iterator it(folder.getBuffer(), error), end; !error && it != end;
         it.increment(error)) {
      std::string name = it->path().filename().string();
      if (it->is_regular_file(error) && name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0)
        here.push_back(it->path());
    }
    std::sort(here.begin(), here.end());
    files.insert(files.end(), here.begin(), here.end());
  }
  return files;
}

std::string searchedFolders() {
  std::string out;
  Array<BaseString<char>> folders = CClassRegistryFile::GetSearchPath();
  for (BaseString<char> const &folder : folders) out += (out.empty() ? "" : ", ") + text(folder);
  return out;
}

}  // namespace

int fail(std::ostream &err, char const *command, std::string const &text, int status) {
  err << "quarn " << command << ": " << text << '\n';
  return status;
}

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

int unregisterClass(Arguments const &args, std::ostream &out, std::ostream &err) {
  ClassTag tag(args.positional[0].c_str());
  BaseString<char> path = CClassRegistryFile::GetFilePath(tag);
  if (!CClassRegistryFile::Exists(tag)) return fail(err, "unregister", args.positional[0] + " is not registered");
  CClassRegistryFile::RemoveDataFile(tag);
  out << "Unregistered " << args.positional[0] << " (removed " << path.getBuffer() << ")\n";
  return kOk;
}

int which(Arguments const &args, std::ostream &out, std::ostream &err) {
  ClassTag tag(args.positional[0].c_str());
  CZedClassInfo info;
  BaseString<char> path;
  if (!CClassRegistryFile::TryImportDataFile(tag, info, &path))
    return fail(err, "which", args.positional[0] + " is not registered: " + joined(detail::explainUnresolved(tag)));
  if (info.server.isEmpty())
    return fail(err, "which", "registration file " + text(path) + " names no library");
  out << info.server.getBuffer() << '\n';
  std::error_code error;
  if (!std::filesystem::exists(info.server.getBuffer(), error))
    return fail(err, "which", "the library registered in " + text(path) + " does not exist");
  return kOk;
}

int listClasses(Arguments const &, std::ostream &out, std::ostream &) {
  std::vector<std::string> names;
  for (std::filesystem::path const &file : registrationFiles())
    for (std::string &name : candidateNames(file.filename().string()))
      if (isValidName(name)) names.push_back(std::move(name));
  // A class is listed once, under its interned spelling, from the file in use
  // for its name; a file in use that cannot serve is listed as broken.
  struct Row {
    std::string library, note;
  };
  std::map<std::string, Row> rows;
  for (std::string const &name : names) {
    ClassTag tag(name.c_str());
    if (rows.count(tag.getName())) continue;
    CZedClassInfo info;
    BaseString<char> path;
    try {
      if (!CClassRegistryFile::TryImportDataFile(tag, info, &path)) continue;  // a file of another name's version
    } catch (Exception const &e) {
      rows[tag.getName()] = {"-", "BROKEN: " + oneLine(e.what())};
      continue;
    }
    if (!info.progid.isEmpty() && ClassTag(info.progid) != tag) {
      std::vector<std::string> owners = candidateNames(std::filesystem::path(text(path)).filename().string());
      if (owners.size() > 1 && isValidName(owners[1]) && ClassTag(owners[1].c_str()) == ClassTag(info.progid))
        continue;  // version N of another class
      rows[tag.getName()] = {text(info.server), "BROKEN: the file is for class " + text(info.progid)};
    } else if (info.progid.isEmpty()) {
      rows[tag.getName()] = {text(info.server), "BROKEN: the file names no class"};
    } else if (info.server.isEmpty()) {
      rows[tag.getName()] = {"-", "BROKEN: the file names no library"};
    } else if (std::error_code error; !std::filesystem::exists(info.server.getBuffer(), error)) {
      rows[tag.getName()] = {text(info.server), "BROKEN: the library does not exist"};
    } else {
      rows[tag.getName()] = {text(info.server), cell(info.description) + (info.proxy ? "\tproxy" : "")};
    }
  }
  int status = kOk;
  for (auto const &[name, row] : rows) {
    out << name << '\t' << row.library << '\t' << row.note << '\n';
    if (row.note.rfind("BROKEN: ", 0) == 0) status = kFailed;
  }
  return status;
}

int check(Arguments const &, std::ostream &out, std::ostream &) {
  std::vector<std::pair<std::string, std::string>> problems;  // file, what is wrong
  std::map<std::string, std::vector<std::pair<std::string, std::string>>> byLibrary;  // library -> (file, class)
  std::vector<std::filesystem::path> files = registrationFiles();
  for (std::filesystem::path const &file : files) {
    std::string const path = file.string();
    std::vector<std::string> names = candidateNames(file.filename().string());
    if (!isValidName(names[0])) {
      problems.emplace_back(path, "its file name is not a class name");
      continue;
    }
    CZedClassInfo info;
    try {
      CClassRegistryFile::ReadDataFile(ClassTag(names[0].c_str()), BaseString<char>(path.c_str()), info);
    } catch (Exception const &e) {
      problems.emplace_back(path, oneLine(e.what()));
      continue;
    }
    auto named = [&](std::string const &name) { return isValidName(name) && ClassTag(name.c_str()) == ClassTag(info.progid); };
    if (info.progid.isEmpty()) {
      problems.emplace_back(path, "it names no class (no mxq:progid inside mxq:class)");
    } else if (std::none_of(names.begin(), names.end(), named)) {
      problems.emplace_back(path, "it is for class " + text(info.progid) + ", which its file name does not match");
    } else if (info.server.isEmpty()) {
      problems.emplace_back(path, "it names no library (no mxq:server inside mxq:class)");
    } else if (std::error_code error; !std::filesystem::exists(info.server.getBuffer(), error)) {
      problems.emplace_back(path, "its library " + text(info.server) + " does not exist");
    } else {
      byLibrary[text(info.server)].emplace_back(path, text(info.progid));
    }
  }
  for (auto const &[library, entries] : byLibrary) {
    std::vector<std::string> names;
    for (auto const &entry : entries) names.push_back(entry.second);
    LibraryProbe probe = probeLibrary(library, names);
    for (auto const &[file, name] : entries) {
      auto answer = probe.made.find(name);
      if (!probe.usable())
        problems.emplace_back(file, "its library " + library + " cannot be used: " + probe.problem);
      else if (answer == probe.made.end() || !answer->second.empty())
        problems.emplace_back(file, "its library " + library + " no longer serves " + name + " (DllCreateInstance " +
                                        (answer == probe.made.end() ? "gave no answer" : answer->second) + ")");
    }
  }
  std::stable_sort(problems.begin(), problems.end(),
                   [](auto const &a, auto const &b) { return a.first < b.first; });
  for (auto const &[file, problem] : problems) out << file << ": " << problem << '\n';
  out << "Checked " << files.size() << " registration " << (files.size() == 1 ? "file" : "files") << " in "
      << searchedFolders() << ": ";
  if (problems.empty())
    out << "no problems.\n";
  else
    out << problems.size() << (problems.size() == 1 ? " problem" : " problems") << ".\n";
  return problems.empty() ? kOk : kFailed;
}

}  // namespace quarn::tool

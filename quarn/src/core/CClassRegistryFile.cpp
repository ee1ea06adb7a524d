// CClassRegistryFile.cpp - locating, writing, reading and removing registration files
#include <dlfcn.h>
#include <expat.h>
#include <fcntl.h>
#include <quarn/core/Annotate.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cstdlib>
#include <memory>
#include <string>

#include "Trace.h"

namespace quarn {

namespace {

constexpr char kClassName[] = "CClassRegistryFile";

// Element flags of the reader's state.
constexpr unsigned int kClass = 1, kProgid = 2, kGuid = 4, kServer = 8, kDescription = 16;

BaseString<unsigned short> wide(BaseString<char> const &utf8) {
  BaseString<unsigned short> out;
  util::ConvertUTF8toString(out, utf8);
  return out;
}

BaseString<char> withSuffix(BaseString<char> base, char const *suffix) {
  base.append(suffix, static_cast<unsigned int>(std::strlen(suffix)));
  return base;
}

BaseString<char> versionedPath(BaseString<char> const &base, int version) {
  if (version <= 0) return withSuffix(base, ".xml");
  char suffix[32];
  std::snprintf(suffix, sizeof suffix, ".%d.xml", version);
  return withSuffix(base, suffix);
}

bool fileExists(BaseString<char> const &path) { return access(path.getBuffer(), F_OK) == 0; }

int versionOf(BaseString<char> const &base) {
  int n = 1;
  while (fileExists(versionedPath(base, n))) ++n;
  return n - 1;
}

BaseString<char> join(BaseString<char> path, char const *name) {
  path.append('/');
  path.append(name, static_cast<unsigned int>(std::strlen(name)));
  return path;
}

// <folder>/<name>, without version or extension, in the first folder of the
// search path that holds a file of the class (its plain file or version 1);
// in the first folder when none does. `writing` always takes the first folder.
BaseString<char> basePath(char const *name, bool writing = false) {
  CClassRegistryFile::ValidateClassName(name);
  Array<BaseString<char>> folders = CClassRegistryFile::GetSearchPath();
  if (writing || folders.getSize() == 1) return join(folders[0], name);
  for (BaseString<char> const &folder : folders) {
    BaseString<char> base = join(folder, name);
    if (fileExists(versionedPath(base, 0)) || fileExists(versionedPath(base, 1))) return base;
  }
  return join(folders[0], name);
}
// The same for a tag: its name as first interned.
BaseString<char> basePath(ClassTag const &tag, bool writing = false) { return basePath(tag.getName(), writing); }

[[noreturn]] void throwNotRegistered(ClassTag const &tag, BaseString<char> const &path) {
  throw Exception("Component %hs is not registered.\nFile does not exist: %ls.", tag.getName(), wide(path).getBuffer());
}

// ---- writing

// True when `text` is UTF-8 that an XML file can hold: no control characters
// other than TAB, LF and CR, and neither U+FFFE nor U+FFFF.
bool isWritableText(BaseString<char> const &text) {
  for (unsigned int i = 0; i < text.getLength(); ++i) {
    auto c = static_cast<unsigned char>(text.getBuffer()[i]);
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return false;
  }
  BaseString<unsigned short> units;
  util::ConvertUTF8toString(units, text);
  if (util::ConvertStringtoUTF8(units) != text) return false;  // invalid sequences come back as U+FFFD
  // Valid UTF-8 holds only paired surrogates; of the rest, XML refuses U+FFFE and U+FFFF.
  for (unsigned int i = 0; i < units.getLength(); ++i)
    if (units.getBuffer()[i] >= 0xFFFE) return false;
  return true;
}

void appendEscaped(BaseString<char> &out, BaseString<char> const &text) {
  for (unsigned int i = 0; i < text.getLength(); ++i) {
    char c = text.getBuffer()[i];
    switch (c) {
      case '&':
        out.append("&amp;", 5);
        break;
      case '<':
        out.append("&lt;", 4);
        break;
      case '>':
        out.append("&gt;", 4);
        break;
      case '\r':
        out.append("&#xD;", 5);
        break;  // a raw CR would read back as LF
      default:
        out.append(c);
    }
  }
}

void appendLiteral(BaseString<char> &out, char const *text) {
  out.append(text, static_cast<unsigned int>(std::strlen(text)));
}

BaseString<char> formatDataFile(CZedClassInfo const &info) {
  BaseString<char> out("");
  appendLiteral(out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<mxq:class>\n\t<mxq:progid>");
  appendEscaped(out, info.progid);
  appendLiteral(out, info.proxy ? "</mxq:progid>\n\t<mxq:server proxy=\"true\">" : "</mxq:progid>\n\t<mxq:server>");
  appendEscaped(out, info.server);
  appendLiteral(out, "</mxq:server>\n\t<mxq:description>");
  appendEscaped(out, info.description);
  appendLiteral(out, "</mxq:description>\n</mxq:class>\n");
  return out;
}

// Writes `data` to `path` through a temporary file in the same folder.
void writeFileAtomically(BaseString<char> const &path, BaseString<char> const &data) {
  static std::atomic<unsigned int> counter{0};
  char suffix[64];
  std::snprintf(suffix, sizeof suffix, ".%ld.%u.tmp", static_cast<long>(getpid()), counter.fetch_add(1));
  BaseString<char> temporary = withSuffix(path, suffix);
  int fd = ::open(temporary.getBuffer(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) throw Exception("Failed to open file %ls for writing.", wide(path).getBuffer());
  char const *p = data.getBuffer();
  std::size_t left = data.getLength();
  int error = 0;
  while (left > 0 && !error) {
    ssize_t n = ::write(fd, p, left);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      error = n < 0 ? errno : EIO;
      break;
    }
    p += n;
    left -= static_cast<std::size_t>(n);
  }
  if (::close(fd) != 0 && !error) error = errno;
  if (!error && std::rename(temporary.getBuffer(), path.getBuffer()) != 0) error = errno;
  if (error) {
    ::unlink(temporary.getBuffer());
    throw Exception("Failed to write file %ls: %hs.", wide(path).getBuffer(), std::strerror(error));
  }
}

// ---- reading

struct Reader {
  CZedClassInfo info;
  unsigned int state = 0;
  BaseString<char> text{""};
  bool tooLarge = false;
  XML_Parser parser = nullptr;
};

unsigned int flagOf(XML_Char const *name) {
  if (std::strcmp(name, "mxq:class") == 0) return kClass;
  if (std::strcmp(name, "mxq:progid") == 0) return kProgid;
  if (std::strcmp(name, "mxq:guid") == 0) return kGuid;
  if (std::strcmp(name, "mxq:server") == 0) return kServer;
  if (std::strcmp(name, "mxq:description") == 0) return kDescription;
  return 0;
}

void XMLCALL onStart(void *data, XML_Char const *name, XML_Char const **attributes) {
  auto &r = *static_cast<Reader *>(data);
  r.state |= flagOf(name);
  if (attributes && attributes[0] && std::strcmp(attributes[0], "proxy") == 0) r.info.proxy = true;
  r.text.empty();
}

void XMLCALL onText(void *data, XML_Char const *text, int length) {
  auto &r = *static_cast<Reader *>(data);
  if (length <= 0 || r.tooLarge) return;
  // Entities can expand a small file into a great deal of text: bound it.
  if (r.text.getLength() + static_cast<unsigned int>(length) > CClassRegistryFile::kMaxFileSize) {
    r.tooLarge = true;
    XML_StopParser(r.parser, XML_FALSE);
    return;
  }
  r.text.append(text, static_cast<unsigned int>(length));
}

void XMLCALL onEnd(void *data, XML_Char const *name) {
  auto &r = *static_cast<Reader *>(data);
  switch (r.state) {
    case kClass | kProgid:
      r.info.progid = r.text;
      break;
    case kClass | kServer:
      r.info.server = r.text;
      break;
    case kClass | kDescription:
      r.info.description = r.text;
      break;
    default:
      break;
  }
  r.state &= ~flagOf(name);
  r.text.empty();
}

struct ParserDeleter {
  void operator()(XML_ParserStruct *parser) const noexcept { XML_ParserFree(parser); }
};

[[noreturn]] void throwTooLarge(ClassTag const &tag, BaseString<char> const &path) {
  throw Exception("Registration file %ls of class %hs is larger than %u bytes.", wide(path).getBuffer(), tag.getName(),
                  CClassRegistryFile::kMaxFileSize);
}

void parse(ClassTag const &tag, BaseString<char> const &path, char const *data, unsigned int size,
           CZedClassInfo &info) {
  std::unique_ptr<XML_ParserStruct, ParserDeleter> parser(XML_ParserCreate(nullptr));
  if (!parser) detail::throwMemory();
  Reader reader;
  reader.parser = parser.get();
  XML_SetUserData(parser.get(), &reader);
  XML_SetElementHandler(parser.get(), onStart, onEnd);
  XML_SetCharacterDataHandler(parser.get(), onText);
  if (XML_Parse(parser.get(), data, static_cast<int>(size), XML_TRUE) != XML_STATUS_OK) {
    if (reader.tooLarge)
      throw Exception("Registration file %ls of class %hs holds more than %u bytes of text.", wide(path).getBuffer(),
                      tag.getName(), CClassRegistryFile::kMaxFileSize);
    throw Exception("Registration file %ls of class %hs is not valid XML: %hs at line %lu, column %lu.",
                    wide(path).getBuffer(), tag.getName(), XML_ErrorString(XML_GetErrorCode(parser.get())),
                    static_cast<unsigned long>(XML_GetCurrentLineNumber(parser.get())),
                    static_cast<unsigned long>(XML_GetCurrentColumnNumber(parser.get())));
  }
  info = reader.info;
}

struct FileCloser {
  void operator()(std::FILE *file) const noexcept { std::fclose(file); }
};

// Reads and parses `path`; false when the file does not exist.
bool readDataFile(ClassTag const &tag, BaseString<char> const &path, CZedClassInfo &info) {
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.getBuffer(), "rb"));
  if (!file) {
    if (errno == ENOENT) return false;
    throw Exception("Failed to read registration file %ls of class %hs: %hs.", wide(path).getBuffer(), tag.getName(),
                    std::strerror(errno));
  }
  // One byte more than allowed tells a file at the limit from a larger one.
  std::unique_ptr<char[]> buffer(new char[CClassRegistryFile::kMaxFileSize + 1]);
  std::size_t size = std::fread(buffer.get(), 1, CClassRegistryFile::kMaxFileSize + 1, file.get());
  if (std::ferror(file.get()))
    throw Exception("Failed to read registration file %ls of class %hs: %hs.", wide(path).getBuffer(), tag.getName(),
                    std::strerror(errno));
  if (size > CClassRegistryFile::kMaxFileSize) throwTooLarge(tag, path);
  parse(tag, path, buffer.get(), static_cast<unsigned int>(size), info);
  return true;
}

}  // namespace

namespace {
BaseString<char> findLibraryPath() {
  static char const anchor = 0;  // any address inside libquarn
  Dl_info where{};
  if (dladdr(&anchor, &where) == 0 || !where.dli_fname || !*where.dli_fname)
    throw Exception("Failed to get module file name for registration file");
  // The loader may name it through a run path ("/opt/quarn/bin/../lib/..."):
  // the folder is shown resolved, the file keeps the name it was loaded by.
  char const *file = where.dli_fname;
  char const *slash = std::strrchr(file, '/');
  if (!slash) return BaseString<char>(file);
  std::unique_ptr<char, decltype(&std::free)> folder(
      realpath(std::string(file, static_cast<std::size_t>(slash - file)).c_str(), nullptr), &std::free);
  if (!folder) return BaseString<char>(file);
  BaseString<char> path(folder.get());
  path.append(slash, static_cast<unsigned int>(std::strlen(slash)));
  return path;
}
}  // namespace

BaseString<char> CClassRegistryFile::GetLibraryPath() {
  static BaseString<char> const path = findLibraryPath();  // the library does not move while loaded
  return path;
}

BaseString<char> CClassRegistryFile::GetDefaultClassesDirectory() {
  BaseString<char> file = GetLibraryPath();
  char const *slash = std::strrchr(file.getBuffer(), '/');
  BaseString<char> directory = slash ? BaseString<char>(file.getBuffer(), static_cast<unsigned int>(slash - file.getBuffer()))
                                     : BaseString<char>(".");
  return withSuffix(std::move(directory), "/classes");
}

Array<BaseString<char>> CClassRegistryFile::GetSearchPath() {
  Array<BaseString<char>> folders;
  char const *list = std::getenv(kSearchPathVariable);
  if (!list || !*list) {
    folders.append(GetDefaultClassesDirectory());
    return folders;
  }
  for (char const *start = list;; ++start) {
    char const *end = std::strchr(start, ':');
    unsigned int length = static_cast<unsigned int>(end ? end - start : std::strlen(start));
    folders.append(length == 0 ? GetDefaultClassesDirectory() : BaseString<char>(start, length));
    if (!end) break;
    start = end;
  }
  return folders;
}

BaseString<char> CClassRegistryFile::GetClassesDirectory() { return GetSearchPath()[0]; }

void CClassRegistryFile::ValidateClassName(char const *name) {
  detail::annotated(kClassName, "ValidateClassName", [&] {
    bool bad = !name || !*name || std::strchr(name, '/') || std::strchr(name, '\\') || std::strstr(name, "..");
    if (bad)
      throw Exception("Invalid class name '%hs': a class name must not be empty or contain '/', '\\' or '..'.",
                      name ? name : "");
  });
}

BaseString<char> CClassRegistryFile::GetFilePathForWriting(ClassTag const &tag) {
  BaseString<char> base = basePath(tag, true);
  return versionedPath(base, versionOf(base));
}

int CClassRegistryFile::GetVersionID(ClassTag const &tag) {
  return detail::annotated(kClassName, "GetVersionID", [&] { return versionOf(basePath(tag)); });
}

BaseString<char> CClassRegistryFile::GetFilePath(ClassTag const &tag, int version) {
  return versionedPath(basePath(tag), version);
}

BaseString<char> CClassRegistryFile::GetFilePath(ClassTag const &tag) {
  BaseString<char> base = basePath(tag);
  return versionedPath(base, versionOf(base));
}

bool CClassRegistryFile::Exists(ClassTag const &tag) { return fileExists(GetFilePath(tag)); }

bool CClassRegistryFile::Exists(char const *name) {
  BaseString<char> base = basePath(name);
  return fileExists(versionedPath(base, versionOf(base)));
}

void CClassRegistryFile::ExportDataFile(CZedClassInfo const &info) {
  detail::annotated(kClassName, "ExportDataFile", [&] {
    ClassTag tag(info.progid);
    BaseString<char> path = GetFilePathForWriting(tag);
    struct Field {
      char const *name;
      BaseString<char> const &text;
    } const fields[] = {{"class name", info.progid}, {"library path", info.server}, {"description", info.description}};
    for (Field const &field : fields)
      if (!isWritableText(field.text))
        throw Exception("Cannot register class %hs: its %hs is not UTF-8 text without control characters.",
                        tag.getName(), field.name);
    BaseString<char> directory = GetClassesDirectory();
    if (::mkdir(directory.getBuffer(), 0777) != 0 && errno != EEXIST)
      throw Exception("Failed to open file %ls for writing.", wide(path).getBuffer());
    writeFileAtomically(path, formatDataFile(info));
  });
}

bool CClassRegistryFile::TryImportDataFile(ClassTag const &tag, CZedClassInfo &info, BaseString<char> *path) {
  BaseString<char> file = GetFilePath(tag);
  if (path) *path = file;
  bool found = readDataFile(tag, file, info);
  detail::traceClasses("registration file of %s: %s %s", tag.getName(), file.getBuffer(),
                       found ? "read" : "does not exist");
  return found;
}

bool CClassRegistryFile::ReadDataFile(ClassTag const &tag, BaseString<char> const &path, CZedClassInfo &info) {
  return readDataFile(tag, path, info);
}

void CClassRegistryFile::ImportDataFile(ClassTag const &tag, CZedClassInfo &info) {
  BaseString<char> path;
  if (!TryImportDataFile(tag, info, &path)) throwNotRegistered(tag, path);
}

void CClassRegistryFile::RemoveDataFile(ClassTag const &tag) {
  detail::annotated(kClassName, "RemoveDataFile", [&] {
    BaseString<char> path = GetFilePath(tag);
    if (std::remove(path.getBuffer()) == 0) return;
    if (errno == ENOENT) throwNotRegistered(tag, path);
    throw Exception("Failed to remove file %ls: %hs.", wide(path).getBuffer(), std::strerror(errno));
  });
}

}  // namespace quarn

// CClassRegistryFile.h - the per-class registration files beside libquarn
//
// A class that no class object of the process implements is found through a
// small XML file per class in the folder "classes" beside the file that holds
// libquarn (libquarn.so): <dir>/classes/<name>.xml, where <name> is the class
// name exactly as interned in its tag (the first spelling registered).
//
// The environment variable QUARN_CLASSES_PATH replaces that folder by a list
// of folders separated by ':'. They are searched in order: a class's files
// are those in the first folder that holds its plain file or its version 1,
// and new registrations are written to the first folder. An empty entry
// stands for the folder beside libquarn ("/home/me/classes:" searches the
// user's folder, then the default one); without an empty entry the default
// folder is not searched at all. Unset or empty, only the default is used. A
// may have numbered versions, <name>.1.xml, <name>.2.xml, ...: the highest
// version reached without a gap is the one in use (versions 1 and 2 -> 2;
// versions 1 and 3 -> 1), and with no numbered file the plain <name>.xml is.
// Every operation below reads, writes, tests or removes the file in use.
//
// The file, as ExportDataFile writes it (one element per line, lines end with
// "\n", texts escaped as XML character data: & < > and CR):
//
//   <?xml version="1.0" encoding="UTF-8"?>
//   <mxq:class>
//   \t<mxq:progid>Marlix.example.Greeter</mxq:progid>
//   \t<mxq:server proxy="true">/opt/marlix/libexample.so</mxq:server>
//   \t<mxq:description>Says hello</mxq:description>
//   </mxq:class>
//
// ( proxy="true" only for a proxy). Reading is tolerant of layout: an element
// "mxq:progid", "mxq:server" or "mxq:description" directly inside "mxq:class"
// sets its field (names compared exactly), any element whose first attribute
// is named "proxy" marks the class a proxy whatever the value, and
// "mxq:guid" is recognised and ignored.
//
// Bad input is refused with an Exception that names the class and the file:
// malformed or truncated XML, an empty file, a file over 64 KiB (or entities
// that expand to more text than that), an unreadable file. Class names that could leave the folder (empty, or
// containing '/', '\' or "..") are refused before any file is touched.
// Writing goes through a temporary file and a rename, so that a reader never
// sees half a file. Nothing here takes a lock.
#pragma once

#include <quarn/core/CZedClassInfo.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class QUARN_API CClassRegistryFile {
 public:
  /// Largest registration file that is read.
  static constexpr unsigned int kMaxFileSize = 64 * 1024;

  /// The environment variable that holds the search path.
  static constexpr char kSearchPathVariable[] = "QUARN_CLASSES_PATH";

  /// The file that holds the running libquarn. Throws "Failed to get module
  /// file name for registration file" when the system cannot say.
  static BaseString<char> GetLibraryPath();
  /// The default folder: the directory of libquarn's file followed by "/classes".
  static BaseString<char> GetDefaultClassesDirectory();
  /// The folders searched, in order (never empty).
  static Array<BaseString<char>> GetSearchPath();
  /// The folder new registrations are written to: the first one searched.
  static BaseString<char> GetClassesDirectory();

  /// Throws "Invalid class name '<name>': a class name must not be empty or
  /// contain '/', '\' or '..'." for a name that is not safe as a file name.
  static void ValidateClassName(char const *name);

  /// The version in use: the highest n such that the files for 1..n all exist; 0 for none.
  static int GetVersionID(ClassTag const &tag);
  /// The path of the registration file of `tag` in `version` (0: the plain file).
  static BaseString<char> GetFilePath(ClassTag const &tag, int version);
  /// The path of the registration file in use (in the first folder when there is none).
  static BaseString<char> GetFilePath(ClassTag const &tag);
  /// The path ExportDataFile writes for `tag`: in the first folder searched.
  static BaseString<char> GetFilePathForWriting(ClassTag const &tag);
  /// Whether the registration file in use exists.
  static bool Exists(ClassTag const &tag);
  /// Exists() for a name spelled as given, without interning it (for names
  /// read from untrusted data); an invalid name throws as ValidateClassName does.
  static bool Exists(char const *name);

  /// Writes `info` as the registration file of the class `info.progid` in
  /// the first folder searched (GetFilePathForWriting), creating the folder
  /// when needed. "Failed to open file <path> for
  /// writing." when the file cannot be made; texts that are not UTF-8, or hold
  /// control characters other than TAB, LF and CR, are refused.
  static void ExportDataFile(CZedClassInfo const &info);

  /// Reads the registration file in use into `info`; throws
  /// "Component <name> is not registered.\nFile does not exist: <path>." when
  /// there is none.
  static void ImportDataFile(ClassTag const &tag, CZedClassInfo &info);
  /// As ImportDataFile, but returns false (and leaves `info`) when there is no
  /// file. `path`, when given, receives the file's path either way.
  static bool TryImportDataFile(ClassTag const &tag, CZedClassInfo &info, BaseString<char> *path = nullptr);

  /// Reads the registration file at `path` (any file, named in messages as
  /// belonging to `tag`) into `info`; false when it does not exist.
  static bool ReadDataFile(ClassTag const &tag, BaseString<char> const &path, CZedClassInfo &info);

  /// Deletes the registration file in use (so an older version, if any, comes
  /// into use); "Component <name> is not registered..." when there is none.
  static void RemoveDataFile(ClassTag const &tag);
};

}  // namespace quarn

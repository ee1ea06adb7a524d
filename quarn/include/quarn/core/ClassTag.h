// ClassTag.h - interned class names, compared by id
//
// Every class name ("Marlix.value.IntegerValue") is interned once in a
// process-wide registry that gives it a dense id (0, 1, 2, ... in order of
// first interning). A ClassTag is a cheap value (id plus a pointer to the
// interned name) compared by id. Names are matched ignoring the case of ASCII
// letters A-Z: interning a known name in another letter case yields the first
// spelling. The registry also holds, per id, the Class object bound to the name.
//
// Interning is serialised by a lock, so tags may be made from any thread;
// nothing is removed while the library is loaded. lookup() finds a name
// without interning it, for names that come from outside (a stream) and must
// not fill the registry. Whoever caches what findClass answers compares
// getBindingGeneration(), which changes whenever a class is bound or unbound. Ids are per process: stored
// data identifies a class by getHash() instead, and ClassTag(hash, true)
// rebuilds the tag.
//
// The memory-usage block passed to addMemoryUsage and the static readers is an
// int array: element 0 is the number n of entries, then n triples
// (id, number of objects, number of bytes). The caller zeroes element 0 and
// provides room for 1 + 3 x getNumClassTags() integers.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class Class;

class QUARN_API ClassTag {
 public:
  /// The empty tag: id -1, null name.
  ClassTag() noexcept = default;
  /// Interns `name` (8-bit).
  ClassTag(char const *name);  // NOLINT(google-explicit-constructor)
  explicit ClassTag(BaseString<char> const &name);
  /// Interns a 16-bit name converted unit by unit; a unit above 255 throws
  /// "Unable to convert character 0x%x". A null name interns the empty name.
  explicit ClassTag(unsigned short const *name);
  explicit ClassTag(BaseString<unsigned short> const &name);
  /// Rebuilds a tag: from a case-sensitive name hash when `byHash` is true
  /// ("ClassTag with hash '0x%X' not found" when unknown), else from an id
  /// (-1 gives the empty tag; an id past the end throws InvalidIndexException).
  ClassTag(int value, bool byHash);
  ClassTag(ClassTag const &) noexcept = default;
  ClassTag &operator=(ClassTag const &) noexcept = default;
  virtual ~ClassTag();

  /// Same id (names are never compared here).
  bool operator==(ClassTag const &other) const noexcept { return m_id == other.m_id; }
  bool operator!=(ClassTag const &other) const noexcept { return m_id != other.m_id; }
  bool matches(ClassTag const &other) const noexcept { return m_id == other.m_id; }

  int getId() const noexcept { return m_id; }
  /// The interned name (first spelling registered); null for the empty tag.
  char const *getName() const noexcept { return m_name; }
  /// strlen(getName()), kept with the tag (0 for the empty tag).
  unsigned int getNameLength() const noexcept { return m_length; }
  operator char const *() const noexcept { return m_name; }  // NOLINT(google-explicit-constructor)
  /// Case-sensitive 31-polynomial of the name's bytes (0 for a null or empty name).
  int getHash() const noexcept;
  /// Case-sensitive 31-polynomial of any name, as getHash computes it.
  static unsigned int hashName(char const *name) noexcept;

  /// Number of names interned.
  static int getNumClassTags();
  /// Whether `name` (in any letter case) is interned already; interns nothing.
  static bool isInterned(char const *name);
  /// One probe of the registry that interns nothing: when `name` (in any
  /// letter case) is interned, sets `tag` to it and answers true; else false
  /// and `tag` is left alone.
  static bool lookup(char const *name, ClassTag &tag);
  /// A number that changes whenever a class is bound to a tag or unbound.
  static unsigned int getBindingGeneration() noexcept;

  /// The bound class or null; an id out of range (the empty tag too) throws InvalidIndexException.
  Class *findClass() const;
  /// As findClass, but "Class name %hs has no implementation class registered" when none is bound.
  Class &getClass() const;

  // Memory-usage block (see the file comment).
  void addMemoryUsage(int bytes, int *info) const;
  static int getInfoSize(int *info);
  static unsigned int getAllObjects(int *info);
  static unsigned int getAllBytes(int *info);
  static int getNumObjects(int *info, ClassTag &tag);
  static int getNumBytes(int *info, ClassTag &tag);
  static void getInfo(int *info, unsigned int index, BaseString<unsigned short> &name, int &objects, int &bytes);

 protected:
  friend class Class;
  /// Binds `c` to this tag's id (a later call replaces an earlier one).
  void setClass(Class *c) const;

 private:
  void Init(char const *name);

  int m_id = -1;
  unsigned int m_length = 0;
  char const *m_name = nullptr;
};

/// The type of every class's static `Tag` member; a ClassTag in all but name.
class QUARN_API ClassTagDecl : public ClassTag {
 public:
  ClassTagDecl(char const *name) : ClassTag(name) {}  // NOLINT(google-explicit-constructor)
  ClassTagDecl(ClassTagDecl const &) = default;
  using ClassTag::operator=;
  ~ClassTagDecl() override;
};

}  // namespace quarn

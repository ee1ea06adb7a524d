// ElementByName.h - reading values that a stream names by their class
//
// Value arrays, data records and record files write each element as its
// class name (framed as NarrowText.h describes) followed by the value's own
// payload; a reader makes the element by that name. All of them go through
// ElementReader, so they share the same limits on hostile input (a name of 1
// to ValueArrayValue::kMaxClassNameLength bytes without a zero byte, and no
// name interned unless a class serves it) and the same fast path: from a
// memory stream the name is compared where it lies against this thread's
// memo of the classes it met last (ClassNameMemo.h: no lock, no allocation);
// a name the memo does not know takes one registry probe (ClassTag::lookup),
// then creation by name under the stream's loading policy
// (StreamLoadingPolicy.h).
#pragma once

#include <quarn/core/Class.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueArrayValue.h>

#include "ArrayCoding.h"
#include "ClassNameMemo.h"

namespace quarn::detail {

/// Reads the class names framing the elements of one container (an array,
/// a record, a record file's record) and makes the elements by them. Made
/// once per container read, on the thread that reads it.
///
/// `what` names the element in the messages ("ValueArrayValue element" ->
/// "ValueArrayValue element 3 has no class name", "Invalid class name length
/// %d in ValueArrayValue element 3", "... has a class name with a zero
/// byte"). With a null `what` the messages name no element: "no class name",
/// "invalid class name length %d", "class name with a zero byte".
///
/// Making a value by name: a bound class if there is one (refused before
/// anything is made unless it makes values: "Class %hs is not a value"), else
/// the component library registered for the name if the loading policy of
/// the stream allows it ("Class %hs is not loaded and this stream may not
/// load it"); "Class %hs not registered." when no class serves the name, and
/// nothing interned then. An object a library made that is not a value is
/// handed back and refused.
class ElementReader {
 public:
  /// A class name as read: `length` bytes at `bytes`, not terminated (in the
  /// stream's memory, or in the caller's scratch buffer).
  struct Name {
    char const *bytes;
    unsigned int length;
  };
  /// Room for a name that has to be copied out of the stream.
  using Scratch = char[ValueArrayValue::kMaxClassNameLength];

  ElementReader(iByteInputStream &in, char const *what) noexcept;
  ElementReader(ElementReader const &) = delete;
  ElementReader &operator=(ElementReader const &) = delete;

  /// Reads the class name framing element `index`: its length, checked, then
  /// its bytes (looked at where they lie in a memory stream, else read into
  /// `scratch`). A zero byte is found only when the name is made (an
  /// interned spelling has none).
  Name readName(unsigned int index, Scratch &scratch) {
    unsigned int const length = readLength(index);
    if (!m_memory || m_memory->getRemaining() < length) [[unlikely]]
      return readStreamedName(length, scratch);
    auto const *bytes = reinterpret_cast<char const *>(m_memory->getCursor());
    m_memory->advance(length);
    return {bytes, length};
  }

  /// The class this thread remembers for `name` (whose instances are values
  /// through their Value base), or null: then makeValue goes to the registry.
  Class const *remembered(Name name) noexcept { return m_memo.find(name.bytes, name.length, m_generation); }

  /// A new value (owned by the caller) of the class element `index` names.
  Value *makeValue(Name name, unsigned int index) {
    if (Class const *c = remembered(name)) [[likely]]
      return makeRemembered(*c, name);
    return makeUnknownValue(name, index);
  }
  /// As makeValue, but also a data record (an object that answers
  /// iDataRecord), with a count of 0 and owned by the caller: what a record
  /// file may hold. Anything else: "Class %hs is neither a value nor a data record".
  Object *makeValueOrRecord(Name name, unsigned int index) {
    if (Class const *c = remembered(name)) [[likely]]
      return makeRemembered(*c, name);
    return makeUnknownRecord(name, index);
  }

  /// Reads element `index`'s class name and makes a value of that class.
  /// (A name that has to be copied out of the stream is copied in a frame of
  /// its own, so that arrays nested in one another keep no scratch on the stack.)
  Value *readValue(unsigned int index) {
    unsigned int const length = readLength(index);
    if (!m_memory || m_memory->getRemaining() < length) [[unlikely]]
      return readStreamedValue(length, index);
    auto const *bytes = reinterpret_cast<char const *>(m_memory->getCursor());
    m_memory->advance(length);
    return makeValue({bytes, length}, index);
  }

  /// Throws "... has a class name with a zero byte" when `name` holds one.
  void checkNoZero(Name name, unsigned int index) const;

 private:
  unsigned int readLength(unsigned int index) {
    int length;
    if (m_memory) [[likely]]
      *m_memory >> length;
    else
      m_in >> length;
    if (length <= 1 || static_cast<unsigned int>(length) - 1 > ValueArrayValue::kMaxClassNameLength) [[unlikely]]
      failLength(length, index);
    return static_cast<unsigned int>(length - 1);
  }
  [[noreturn, gnu::cold]] void failLength(int length, unsigned int index) const;
  [[gnu::noinline]] Name readStreamedName(unsigned int length, Scratch &scratch);
  [[gnu::noinline]] Value *readStreamedValue(unsigned int length, unsigned int index);
  static Value *makeRemembered(Class const &c, Name name) {
    Object *made = c.newInstance();
    if (!made) [[unlikely]]
      failNotRegistered(name);
    return static_cast<Value *>(made);
  }
  [[noreturn, gnu::cold]] static void failNotRegistered(Name name);
  [[gnu::noinline]] Value *makeUnknownValue(Name name, unsigned int index);
  [[gnu::noinline]] Object *makeUnknownRecord(Name name, unsigned int index);
  Object *makeUnknown(char const *name, unsigned int length, bool records);

  iByteInputStream &m_in;
  MemoryInputStream *m_memory;
  char const *m_what;
  ClassNameMemo &m_memo;
  unsigned int m_generation;
};

}  // namespace quarn::detail

// ValueTesting.h - helpers shared by the value tests: texts, bytes, streams, owners
//
// u16() builds a UTF-16 string from a u"" literal; str() turns one back for
// messages. serialise() gives the payload bytes of a value; ChunkedInputStream
// reads a byte vector at most N bytes per read, so that every reader is
// exercised across short reads. Owned<T> hands a pooled value back with
// deleteInstance() when it goes out of scope. expectConversions runs a table
// of assignTo rows, each value made fresh from the pool when its row runs.
#pragma once

#include <gtest/gtest.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/Value.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/Unicode.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quarn::test {

using WString = BaseString<unsigned short>;
using Bytes = std::vector<unsigned char>;

inline WString u16(std::u16string_view text) {
  WString s;
  s.resize(static_cast<unsigned int>(text.size()));
  for (unsigned int i = 0; i < text.size(); ++i) s.getBuffer()[i] = text[i];
  return s;
}

inline std::u16string str(WString const &s) {
  return s.isNull() ? std::u16string(u"<null>") : std::u16string(s.getBuffer(), s.getBuffer() + s.getLength());
}

/// UTF-8 for failure messages.
inline std::string utf8(WString const &s) {
  if (s.isNull()) return "<null>";
  BaseString<char> bytes = util::ConvertStringtoUTF8(s);
  return std::string(bytes.getBuffer(), bytes.getLength());
}

/// The text a value gives through getString.
inline std::u16string textOf(Value const &value) {
  WString s;
  value.getString(s);
  return str(s);
}

inline Bytes serialise(Value const &value, int version = 2) {
  MemoryOutputStream out(version);
  value.serialize(out);
  return Bytes(out.getBuffer(), out.getBuffer() + out.getSize());
}

/// Reads `bytes` at most `chunk` bytes per read.
class ChunkedInputStream final : public iByteInputStream {
 public:
  ChunkedInputStream(Bytes bytes, int chunk, int version = 2) : m_bytes(std::move(bytes)), m_chunk(chunk) {
    this->version = version;
  }
  int read(void *data, int count) override {
    int n = std::min({count, m_chunk, static_cast<int>(m_bytes.size() - m_position)});
    if (n <= 0) return 0;
    std::memcpy(data, m_bytes.data() + m_position, static_cast<std::size_t>(n));
    m_position += static_cast<std::size_t>(n);
    return n;
  }
  bool atEnd() const { return m_position == m_bytes.size(); }

 private:
  Bytes m_bytes;
  int m_chunk;
  std::size_t m_position = 0;
};

inline constexpr int kChunkSizes[] = {1, 2, 3, 5, 8, 1024};

template <class T>
using Owned = ObjPtr<T>;

/// Makes a pooled copy of a value when a table row runs.
using Make = std::function<Value *()>;
template <class T>
Make make(T const &value) {
  return [value] { return static_cast<Value *>(T::allocateCopy(value)); };
}

/// Converts `from` into a value of the class of `expected`, which first holds `before`.
struct ConversionCase {
  Make from, before, expected;
};

inline void expectConversions(std::vector<ConversionCase> const &cases) {
  for (std::size_t k = 0; k < cases.size(); ++k) {
    ObjPtr<Value> from(cases[k].from()), target(cases[k].before()), expected(cases[k].expected());
    ASSERT_EQ(target->getClassTag(), expected->getClassTag()) << "row " << k;
    EXPECT_TRUE(from->canAssignTo(target->getClassTag())) << "row " << k;
    from->assignTo(*target);
    WString dumped;
    target->dump(dumped, 1);
    EXPECT_EQ(target->compare(*expected), 0) << "row " << k << ": " << utf8(dumped);
  }
}

}  // namespace quarn::test

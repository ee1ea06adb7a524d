// StreamLoadingPolicyTest.cpp - a stream loads a component library only when its reader allows it
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/Crc32c.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/StreamLoadingPolicy.h>
#include <quarn/value/ValueArrayValue.h>

#include <cstring>
#include <optional>
#include <string>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"

namespace {

using quarn::StreamLoadingPolicy;
using quarn::StreamLoadingScope;

bool libraryLoaded(char const *path) {
  void *handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

/// A value array of one element of class `name` (an IntegerValue payload 7 follows).
std::string arrayNaming(std::string const &name) {
  quarn::MemoryOutputStream out;
  out << 1 << static_cast<int>(name.size() + 1);
  out.write(name.data(), static_cast<int>(name.size()));
  out << 7;
  return std::string(reinterpret_cast<char const *>(out.getBuffer()), out.getSize());
}

/// A record file (stream version 2) of one record naming `name`, without its end marker.
std::string recordFileNaming(std::string const &name) {
  std::string file("\x89QRF\r\n\x1A\n\x01\x00\x02\x00\x00\x00\x01\x00\x00\x00\x00\x00\x73\x67\xCB\xD8", 24);
  std::string const payload = arrayNaming(name).substr(1);  // without the array's element count
  auto put = [&](std::uint32_t v) {
    for (int i = 0; i < 4; ++i) file += static_cast<char>(v >> (8 * i));
  };
  put(static_cast<std::uint32_t>(payload.size()));
  put(quarn::util::crc32c(payload.data(), payload.size()));
  put(quarn::util::crc32c(file.data() + 24, 8));
  return file + payload;
}

/// Restores the process policy when the test ends.
struct ProcessPolicyGuard {
  ~ProcessPolicyGuard() { StreamLoadingPolicy::setProcessPolicy(StreamLoadingPolicy::allowAll()); }
};

TEST(StreamLoadingPolicyTest, ALibraryLoadsOnlyWhenTheReadersPolicyAllowsItAndBoundClassesAlwaysRead) {
  if (libraryLoaded(QUARN_TEST_COMPONENTS)) GTEST_SKIP() << "the test component library is loaded already";
  ASSERT_TRUE(StreamLoadingPolicy::processPolicy().allows("Marlix.anything"));  // the default
  quarn::test::ScratchClass scratch("Marlix.testlib.any.");
  scratch.registerTo(QUARN_TEST_COMPONENTS);
  std::string const refused = "Class " + scratch.name() + " is not loaded and this stream may not load it";
  std::string const notAValue = "Class " + scratch.name() + " is not a value";
  ProcessPolicyGuard guard;
  // In order: every refusal comes before the one read that loads the library.
  // Read as a value array, or as a record file over the stream (whose records
  // follow the stream's scope), or with the policy given to the file reader.
  enum Read { kArray, kFile, kFileOwnPolicy };
  struct Case {
    char const *what;
    std::optional<StreamLoadingPolicy> scoped, process;
    bool scopeOtherStream;
    std::string message;
    Read read = kArray;
  } const cases[] = {
      {"forbidden for this stream", StreamLoadingPolicy::forbidAll(), {}, false, refused},
      {"other prefixes only",
       StreamLoadingPolicy::allowPrefixes({"Marlix.other.", "Marlix.testlib.anyX"}),
       {},
       false,
       refused},
      {"forbidden process-wide", {}, StreamLoadingPolicy::forbidAll(), false, refused},
      {"allowed for another stream only", StreamLoadingPolicy::allowAll(), StreamLoadingPolicy::forbidAll(), true,
       refused},
      {"file: forbidden for its stream", StreamLoadingPolicy::forbidAll(), {}, false, refused, kFile},
      {"file: forbidden process-wide", {}, StreamLoadingPolicy::forbidAll(), false, refused, kFile},
      {"file: forbidden by the reader", StreamLoadingPolicy::forbidAll(), {}, false, refused, kFileOwnPolicy},
      {"file: the reader's policy over its stream's",
       StreamLoadingPolicy::allowPrefixes({"Marlix.other."}),
       {},
       false,
       refused,
       kFileOwnPolicy},
      {"allowed by prefix for this stream", StreamLoadingPolicy::allowPrefixes({"Marlix.testlib.any."}),
       StreamLoadingPolicy::forbidAll(), false, notAValue},
  };
  quarn::ValueArrayValue const before = [] {
    quarn::ValueArrayValue v;
    v.appendValue(quarn::IntegerValue(3));
    return v;
  }();
  for (Case const &c : cases) {
    SCOPED_TRACE(c.what);
    StreamLoadingPolicy::setProcessPolicy(c.process.value_or(StreamLoadingPolicy::allowAll()));
    std::string const bytes = c.read == kArray ? arrayNaming(scratch.name()) : recordFileNaming(scratch.name());
    quarn::MemoryInputStream in(bytes.data(), static_cast<unsigned int>(bytes.size())), other(nullptr, 0);
    std::optional<StreamLoadingScope> scope;
    if (c.read == kFileOwnPolicy) {
      scope.emplace(in, StreamLoadingPolicy::allowAll());
      quarn::RecordFileReader reader(in);
      reader.setLoadingPolicy(*c.scoped);
      quarn::ObjPtr<quarn::Value> record;
      EXPECT_QUARN_THROW(reader.next(record), "Record 0 at offset 24: " + c.message);
      EXPECT_FALSE(libraryLoaded(QUARN_TEST_COMPONENTS));
      continue;
    }
    if (c.scoped) scope.emplace(c.scopeOtherStream ? other : in, *c.scoped);
    if (c.read == kFile) {
      quarn::RecordFileReader reader(in);
      quarn::ObjPtr<quarn::Value> record;
      EXPECT_QUARN_THROW(reader.next(record), "Record 0 at offset 24: " + c.message);
      EXPECT_FALSE(libraryLoaded(QUARN_TEST_COMPONENTS));
      continue;
    }
    quarn::ValueArrayValue target(before);
    EXPECT_QUARN_THROW(target.deserialize(in), c.message + "\nValueArrayValue::deserialize: Tessary exception caught");
    EXPECT_EQ(target.compare(before), 0);
    EXPECT_EQ(libraryLoaded(QUARN_TEST_COMPONENTS), c.message == notAValue);
  }
  // Bound classes read whatever the policy: values are made, the library's component is refused unmade.
  StreamLoadingPolicy::setProcessPolicy(StreamLoadingPolicy::forbidAll());
  std::string const integer = arrayNaming("Marlix.value.IntegerValue");
  quarn::MemoryInputStream in(integer.data(), static_cast<unsigned int>(integer.size()));
  quarn::ValueArrayValue read;
  read.deserialize(in);
  EXPECT_EQ(read.getIthInteger(0), 7);
  std::string const widget = arrayNaming("Marlix.testlib.Widget");
  quarn::MemoryInputStream widgetIn(widget.data(), static_cast<unsigned int>(widget.size()));
  EXPECT_QUARN_THROW(
      read.deserialize(widgetIn),
      "Class Marlix.testlib.Widget is not a value\nValueArrayValue::deserialize: Tessary exception caught");
}

}  // namespace

// RunEnvironment.cpp - run facts from the context's run properties and from the operating system
#include <quarn/core/iContext.h>
#include <quarn/util/RunEnvironment.h>
#include <quarn/value/Value.h>
#include <quarnCore/Unicode.h>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

namespace quarn::util {

namespace {

using Text = BaseString<unsigned short>;

/// Writes the text of the run property `name` into `out`; false, `out`
/// untouched, when there is no such property.
bool readRunProperty(iContext const *context, char const *name, Text &out) {
  iPropertyCollection *run = context ? context->getRunProperties() : nullptr;
  iProperty *property = run ? run->findProperty(Text(name)) : nullptr;
  Value *value = property ? property->getValue() : nullptr;
  if (!value) return false;
  value->getString(out);
  return true;
}

/// Empties `out` (a null string becomes an empty one).
void clear(Text &out) { out.resize(0); }

/// `bytes` (UTF-8) as UTF-16, cut to at most `limit` units without splitting
/// a surrogate pair.
void fromSystemName(char const *bytes, unsigned int limit, Text &out) {
  Text text;
  util::ConvertUTF8toString(text, bytes);
  unsigned int length = text.getLength();
  if (length > limit) {
    length = limit;
    if (unsigned short const last = text.getBuffer()[length - 1]; last >= 0xD800 && last <= 0xDBFF) --length;
  }
  text.resize(length);
  out = std::move(text);
}

}  // namespace

void getUserName(iContext const *context, Text &out) { readRunProperty(context, "USERNAME", out); }

void getSessionID(iContext const *context, Text &out) { readRunProperty(context, "SessionID", out); }

void getLocalRunDirectory(iContext const *context, Text &out) {
  clear(out);
  readRunProperty(context, "RunDirectoryLocal", out);
}

void getRootDirectory(iContext const *context, Text &out) {
  clear(out);
  readRunProperty(context, "MarlixRoot", out);
}

void getLocalRunDirectoryTemp(iContext const *context, Text &out) {
  getLocalRunDirectory(context, out);
  out.appendAscii("/temp");
}

void getHostName(Text &out) {
  char name[HOST_NAME_MAX + 1] = {};
  if (gethostname(name, sizeof name - 1) != 0) name[0] = '\0';
  fromSystemName(name, 15, out);
}

void getUserName(Text &out) {
  long const suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 1024);
  passwd entry{};
  passwd *found = nullptr;
  int error;
  while ((error = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE)
    buffer.resize(buffer.size() * 2);
  fromSystemName(error == 0 && found && found->pw_name ? found->pw_name : "", 127, out);
}

}  // namespace quarn::util

// Dump.cpp - `quarn dump`: record files and bare value streams as text
#include "Dump.h"

#include <quarn/core/iPropertyCollection.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ByteCodec.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace quarn::tool {

namespace {

/// Array elements and bitset positions shown before the rest is counted.
constexpr unsigned int kShownItems = 8;
/// Characters of a value's text shown before the rest is counted.
constexpr unsigned int kShownChars = 120;

using WString = BaseString<unsigned short>;

std::string utf8(WString const &text) {
  if (text.isNull()) return {};
  BaseString<char> bytes = util::ConvertStringtoUTF8(text);
  return std::string(bytes.getBuffer(), bytes.getLength());
}

/// An exception's message on one line.
std::string messageOf(std::exception const &e) {
  std::string text = e.what();
  for (std::size_t at; (at = text.find('\n')) != std::string::npos;) text.replace(at, 1, "; ");
  return text;
}

std::string plural(std::uint64_t n, char const *one) { return std::to_string(n) + " " + one + (n == 1 ? "" : "s"); }

std::string shortened(std::string text) {
  // Counted in code points: UTF-8 continuation bytes do not count.
  std::size_t chars = 0, cut = std::string::npos;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) continue;
    if (chars++ == kShownChars) cut = i;
  }
  if (cut != std::string::npos) text = text.substr(0, cut) + "... (" + std::to_string(chars) + " characters)";
  return text;
}

std::string quoted(std::string const &text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(c));
      out += escape;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

/// "a, b, c, ... (n more)" from the first kShownItems of `count` items.
template <class Item>
std::string listed(unsigned int count, Item item) {
  std::string out;
  for (unsigned int i = 0; i < count && i < kShownItems; ++i) out += (i ? ", " : "") + item(i);
  if (count > kShownItems) out += ", ... (" + std::to_string(count - kShownItems) + " more)";
  return out;
}

/// The text of a value that is not a value array, shortened.
std::string textOf(Value const &value) {
  if (auto const *array = static_cast<ArrayValue const *>(value.findAs(ArrayValue::Tag))) {
    unsigned int n = array->getSize();
    std::string out = "[";  // appended piece by piece: GCC 12 misreads "[" + std::string (-Wrestrict)
    out += std::to_string(n);
    out += n ? "] " : "]";
    out += listed(n, [&](unsigned int i) {
      WString text;
      array->getIthString(i, text);
      return shortened(utf8(text));
    });
    return out;
  }
  WString text, extra;
  if (auto const *bits = static_cast<BitsetValue const *>(value.findAs(BitsetValue::Tag))) {
    bits->getString(text);
    std::string positions = utf8(text);
    std::vector<std::string> on;
    for (std::size_t at = 0, end; at < positions.size(); at = end + 1) {
      end = std::min(positions.find(' ', at), positions.size());
      on.push_back(positions.substr(at, end - at));
    }
    return plural(bits->getNumBits(), "bit") + ", " + std::to_string(on.size()) + " on" + (on.empty() ? "" : ": ") +
           listed(static_cast<unsigned int>(on.size()), [&](unsigned int i) { return on[i]; });
  }
  if (!value.findString(text)) return "undefined";
  value.getXMLText(text, extra);
  std::string shown = shortened(utf8(text));
  if (value.findAs(StringValue::Tag)) shown = text.isNull() ? "null" : quoted(shown);
  if (!extra.isEmpty()) shown += " (" + utf8(extra) + ")";
  return shown;
}

/// One value: its class and text; a value array's elements follow on lines of their own.
void printValue(std::ostream &out, Value const &value, std::string const &indent) {
  out << value.getClassTag().getName();
  auto const *array = static_cast<ValueArrayValue const *>(value.findAs(ValueArrayValue::Tag));
  if (!array) {
    std::string text;
    try {
      text = textOf(value);
    } catch (std::exception const &e) {
      text = "(no text: " + messageOf(e) + ")";
    }
    out << ' ' << text << '\n';
    return;
  }
  out << ", " << plural(array->getSize(), "element") << '\n';
  for (unsigned int i = 0; i < array->getSize(); ++i) {
    out << indent << "  [" << i << "] ";
    printValue(out, array->getIthValue(i), indent + "  ");
  }
}

/// One record: a value, or a record's properties, a line each with its name.
void printRecord(std::ostream &out, Object const &record) {
  if (auto const *value = static_cast<Value const *>(record.findAs(Value::Tag))) return printValue(out, *value, "");
  auto const &list = *static_cast<iPropertyCollection const *>(record.getAs(iPropertyCollection::Tag));
  out << record.getClassTag().getName() << ", " << list.getPropertyCount() << (list.getPropertyCount() == 1 ? " property" : " properties") << '\n';
  for (unsigned int i = 0; i < list.getPropertyCount(); ++i) {
    iProperty const &property = *list.getProperty(i);
    out << "  " << utf8(property.getName()) << ": ";
    printValue(out, *property.getValue(), "  ");
  }
}

// ---- raw framing

/// The stream int at `p` (with `left` bytes there), or false when it runs short.
bool intAt(unsigned char const *p, std::size_t left, int &value, unsigned int &size) {
  if (left == 0) return false;
  size = detail::IntCodec::size(p[0]);
  if (size > left) return false;
  value = detail::IntCodec::decode(p);
  return true;
}

/// Whether a class name's framing starts at p: a length, then that many
/// characters less one that look like "Maker.area.Name".
bool nameAt(unsigned char const *p, std::size_t left, std::string &name, unsigned int &size) {
  int length;
  unsigned int head;
  if (!intAt(p, left, length, head) || length < 4 || length - 1 > 1024 || head + length - 1u > left) return false;
  name.assign(reinterpret_cast<char const *>(p + head), static_cast<std::size_t>(length - 1));
  auto word = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
  if (!std::isalpha(static_cast<unsigned char>(name[0])) || name.back() == '.' || name.find('.') == std::string::npos ||
      name.find("..") != std::string::npos ||
      !std::all_of(name.begin(), name.end(), [&](char c) { return word(c) || c == '.'; }))
    return false;
  size = head + static_cast<unsigned int>(length - 1);
  return true;
}

std::string hexOf(unsigned char const *p, std::size_t n) {
  std::string out;
  char byte[4];
  for (std::size_t i = 0; i < n; ++i) {
    std::snprintf(byte, sizeof byte, i ? " %02X" : "%02X", p[i]);
    out += byte;
  }
  return out;
}

/// `size` bytes that start at file offset `offset`, beginning with a count
/// (a bare value array) or a class name (a record): names, the counts after
/// value array names, and the bytes between them in hex, 16 to a line.
void printRaw(std::ostream &out, unsigned char const *p, std::size_t size, std::uint64_t offset, bool countFirst) {
  // "  offset  hex  label", or for plain bytes "  offset  hex  |text|"
  auto line = [&](std::size_t at, std::size_t n, std::string const &label) {
    char start[24];
    std::snprintf(start, sizeof start, "  %8llu  ", static_cast<unsigned long long>(offset + at));
    std::string text = label;
    if (text.empty()) {
      text.push_back('|');
      for (std::size_t i = 0; i < n; ++i) text += std::isprint(p[at + i]) ? static_cast<char>(p[at + i]) : '.';
      text.push_back('|');
    }
    std::string hex = hexOf(p + at, n);
    out << start << hex << std::string(hex.size() < 48 ? 48 - hex.size() : 1, ' ') << text << '\n';
  };
  bool expectCount = countFirst;
  std::size_t at = 0, pending = 0;  // bytes from `pending` to `at` not shown yet
  auto flush = [&] {
    for (; pending < at; pending += std::min<std::size_t>(16, at - pending))
      line(pending, std::min<std::size_t>(16, at - pending), "");
  };
  while (at < size) {
    std::string name;
    unsigned int n;
    int count;
    if (expectCount && intAt(p + at, size - at, count, n)) {
      flush();
      line(at, n, "count " + std::to_string(count));
      pending = at += n;
      expectCount = false;
    } else if (nameAt(p + at, size - at, name, n)) {
      flush();
      unsigned int head = n - static_cast<unsigned int>(name.size());
      line(at, head, "name " + name);
      pending = at += n;
      expectCount = name == ValueArrayValue::className;
    } else {
      ++at;
    }
  }
  flush();
}

// ---- the two kinds of file

struct Dumper {
  std::string path;
  bool raw;
  std::ostream &out, &err;
  int status = 0;
  std::uint64_t damaged = 0;

  void damage(std::string const &what) {
    err << "quarn dump: " << path << ": " << what << '\n';
    status = 1;
    ++damaged;
  }

  void end(std::uint64_t offset, std::uint64_t read, char const *what) {
    out << "end of file at offset " << offset << ": " << plural(read, what) << " read";
    if (damaged) out << ", " << damaged << " damaged";
    out << '\n';
  }

  void recordFile() {
    RecordFileReader in(path.c_str());
    RecordFileHeader const &h = in.getHeader();
    out << path << ": record file, format " << h.formatVersion << ", stream version " << h.streamVersion
        << ", written by libquarn " << h.writerMajor << '.' << h.writerMinor << '.' << h.writerPatch << '\n';
    std::uint64_t read = 0;
    for (;;) {
      try {
        ObjPtr<Object> record;
        unsigned char const *bytes;
        std::uint32_t size;
        if (raw ? !in.nextBytes(bytes, size) : !in.next(record)) break;
        out << "record " << in.getRecordIndex() << " at offset " << in.getRecordOffset() << ", "
            << plural(in.getRecordLength(), "byte");
        if (raw) {
          out << ", checksum ok\n";
          printRaw(out, bytes, size, in.getRecordOffset() + recordfile::kFrameBytes, false);
        } else {
          out << ": ";
          printRecord(out, *record);
        }
        ++read;
      } catch (Exception const &e) {
        damage(messageOf(e));
      }
    }
    end(in.getOffset(), read, "record");
  }

  /// Counts the bytes read, and tells the end of the data from a value cut short.
  struct CountingStream final : iByteInputStream {
    explicit CountingStream(iByteInputStream &in) : in(in) {}
    iByteInputStream &in;
    std::uint64_t offset = 0;
    int peeked = -1;
    int read(void *data, int count) override {
      if (count <= 0) return 0;
      int got = 0;
      if (peeked >= 0) {
        *static_cast<unsigned char *>(data) = static_cast<unsigned char>(peeked);
        peeked = -1;
        got = 1;
      }
      int more = count > got ? in.read(static_cast<unsigned char *>(data) + got, count - got) : 0;
      got += std::max(more, 0);
      offset += static_cast<unsigned int>(got);
      return got;
    }
    bool atEnd() {
      unsigned char byte;
      if (peeked >= 0) return false;
      if (in.read(&byte, 1) <= 0) return true;
      peeked = byte;
      return false;
    }
  };

  void bareStream() {
    FileInputStream file(path.c_str());
    out << path << ": not a record file; read as bare value arrays one after another (stream version " << file.version
        << ")\n";
    if (raw) {
      std::vector<unsigned char> bytes;
      unsigned char chunk[65536];
      for (int got; (got = file.read(chunk, sizeof chunk)) > 0;) bytes.insert(bytes.end(), chunk, chunk + got);
      printRaw(out, bytes.data(), bytes.size(), 0, true);
      out << "end of file at offset " << bytes.size() << '\n';
      return;
    }
    CountingStream in(file);
    std::uint64_t n = 0;
    for (; !in.atEnd(); ++n) {
      std::uint64_t const offset = in.offset;
      ObjPtr<ValueArrayValue> array(ValueArrayValue::newInstance());
      try {
        array->deserialize(in);
      } catch (Exception const &e) {
        // A bare stream has no framing to find the next value by: this is where reading ends.
        damage("value array " + std::to_string(n) + " at offset " + std::to_string(offset) + ": " + messageOf(e));
        return;
      }
      out << "value array " << n << " at offset " << offset << ": ";
      printValue(out, *array, "");
    }
    end(in.offset, n, "value array");
  }

  void run() {
    unsigned char magic[sizeof recordfile::kMagic] = {};
    int got;
    {
      FileInputStream file(path.c_str());
      got = file.read(magic, sizeof magic);
    }
    bool const record = got > 0 && std::memcmp(magic, recordfile::kMagic, static_cast<std::size_t>(got)) == 0;
    if (record)
      recordFile();
    else
      bareStream();
  }
};

}  // namespace

char const kDumpHelp[] =
    "Prints a record file, or a file of bare value arrays one after another, as\n"
    "text: each record's number, offset and length, then its class and, for a\n"
    "value array, each element's class and text (for a data record, each\n"
    "property's name, class and text). --raw makes no values: it shows the\n"
    "framing (lengths, checksums, class names, counts) and the other bytes in\n"
    "hex, for files whose classes are not at hand (names and counts inside a\n"
    "value are found by their look, so read them as a guess).\n";

int dump(Arguments const &args, std::ostream &out, std::ostream &err) {
  Dumper dumper{args.positional[0], args.has("--raw"), out, err};
  try {
    dumper.run();
  } catch (std::exception const &e) {
    dumper.damage(messageOf(e));
  }
  return dumper.status;
}

}  // namespace quarn::tool

// MakeSeeds.cpp - writes the seed corpora of the fuzz targets with the library's own writers
//
// Usage: quarn_fuzz_seeds <folder>; writes
// <folder>/{payload,text,textutil,registration,record,recordfile}/. Each seed
// is a first byte that chooses what the target reads, then what serialize,
// getXMLText, the text utilities or registering wrote; a record file seed is
// a whole file as RecordFileWriter wrote it (a few cut or damaged on purpose).
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedClassInfo.h>
#include <quarnCore/Base64.h>
#include <quarnCore/TextUtil.h>
#include <quarnCore/Unicode.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <vector>

#include "FuzzTargets.h"

namespace {

using namespace quarn;
using Bytes = std::vector<unsigned char>;

std::string g_root;
int g_count = 0;

void seedFile(char const *target, Bytes const &bytes) {
  std::string const folder = g_root + "/" + target;
  ::mkdir(folder.c_str(), 0777);
  char name[32];
  std::snprintf(name, sizeof name, "/seed-%04d", g_count++);
  std::FILE *file = std::fopen((folder + name).c_str(), "wb");
  if (!file) return;
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
}

void seed(char const *target, unsigned char selector, Bytes const &body) {
  Bytes bytes{selector};
  bytes.insert(bytes.end(), body.begin(), body.end());
  seedFile(target, bytes);
}

Bytes readFile(std::string const &path) {
  Bytes bytes;
  if (std::FILE *f = std::fopen(path.c_str(), "rb")) {
    for (int c; (c = std::fgetc(f)) != EOF;) bytes.push_back(static_cast<unsigned char>(c));
    std::fclose(f);
  }
  return bytes;
}

Bytes unitsOf(BaseString<unsigned short> const &text) {
  Bytes out;
  for (unsigned int i = 0; i < text.getLength(); ++i) {
    out.push_back(static_cast<unsigned char>(text.getBuffer()[i]));
    out.push_back(static_cast<unsigned char>(text.getBuffer()[i] >> 8));
  }
  return out;
}

BaseString<unsigned short> wide(char const *utf8) {
  BaseString<unsigned short> out;
  util::ConvertUTF8toString(out, utf8);
  return out;
}

/// A few values of class `k`: cleared, and read from texts that its class accepts.
std::vector<ObjPtr<Value>> samplesOf(unsigned k) {
  std::vector<ObjPtr<Value>> samples;
  samples.emplace_back(fuzz::kClasses[k]());
  for (char const *text : {"7", "1 3 5", "-2.5", "true", "caf\xC3\xA9 \xF0\x9F\x98\x80", "8 1 2 8"}) {
    ObjPtr<Value> v(fuzz::kClasses[k]());
    try {
      auto *array = static_cast<ArrayValue *>(v->findAs(ArrayValue::Tag));
      array ? array->fillFromString(wide(text), ' ', true) : v->setFromXMLText(wide(text), wide(""));
    } catch (Exception const &) {
      continue;
    }
    samples.push_back(std::move(v));
  }
  if (auto *values = static_cast<ValueArrayValue *>(samples[0]->findAs(ValueArrayValue::Tag))) {
    ValueArrayValue inner;
    inner.appendValue(StringValue("x"));
    values->appendValue(IntegerValue(40000));
    values->appendValue(NullArrayValue());
    values->appendValue(inner);
  }
  if (samples[0]->findAs(DateTimeValue::Tag)) {
    ObjPtr<DateTimeValue> noon(DateTimeValue::newInstance()), epoch(DateTimeValue::newInstance()),
        parsed(DateTimeValue::newInstance());
    noon->set(2000, 1, 1, 12, 0, 0, 0);
    epoch->setSecondsSince1970(86400 * 365 + 3723, 250);
    parsed->set(wide("2024-02-29 23:59:59").getBuffer(), wide("%Y-%m-%d %H:%M:%S").getBuffer());
    (void)parsed->getText();  // caches the text, which the payload then carries
    for (auto *v : {noon.get(), epoch.get(), parsed.get()}) samples.emplace_back(v->cloneValue());
  }
  return samples;
}

/// Two records of a few properties: their values of several classes, one a value array.
std::vector<Ptr<DataRecord>> sampleRecords() {
  Ptr<DataRecord> a(DataRecord::newInstance()), b(DataRecord::newInstance());
  a->defineProperty(wide("n"), IntegerValue::Tag)->setValue(IntegerValue(7));
  a->defineProperty(wide("name"), StringValue::Tag)->setValue(StringValue("caf\xC3\xA9"));
  a->defineProperty(wide("x"), DoubleValue::Tag)->setValue(DoubleValue(-2.5));
  ValueArrayValue mixed;
  mixed.appendValue(BooleanValue(true));
  mixed.appendValue(NullValue());
  b->defineProperty(wide("items"), ValueArrayValue::Tag)->setValue(mixed);
  IntegerArrayValue numbers;
  numbers.fillFromString(wide("1 3 5"), ' ', true);
  b->defineProperty(wide("numbers"), IntegerArrayValue::Tag)->setValue(numbers);
  b->defineProperty(wide("when"), DateTimeValue::Tag);
  return {a, b};
}

/// A record file written by RecordFileWriter: `records` in stream `version`, closed or not.
Bytes recordFile(std::vector<Object const *> const &records, int version, bool close = true) {
  std::string const path = g_root + "/.seed.qrf";
  {
    RecordFileWriter out(path.c_str(), RecordFileWriter::kCreate, version);
    for (Object const *record : records) out.write(*record);
    if (close) out.close();
  }
  Bytes bytes = readFile(path);
  std::remove(path.c_str());
  return bytes;
}

void recordSeeds() {
  std::vector<Ptr<DataRecord>> const records = sampleRecords();
  for (Ptr<DataRecord> const &record : records) {
    for (int version : {1, 2}) {
      MemoryOutputStream out(version);
      record->serialize(out);
      Bytes const body(out.getBuffer(), out.getBuffer() + out.getSize());
      seed("record", static_cast<unsigned char>(version == 1 ? 0x40 : 0), body);
    }
  }
  seed("record", 0, {});  // an empty stream

  IntegerValue integer(40000);
  StringValue text("x y");
  ValueArrayValue array;
  array.appendValue(DoubleValue(1.5));
  array.appendValue(StringArrayValue());
  std::vector<Object const *> const values{&integer, &text, &array};
  std::vector<Object const *> const dataRecords{records[0].get(), records[1].get()};
  seedFile("recordfile", recordFile({}, 2));
  seedFile("recordfile", recordFile(values, 2));
  seedFile("recordfile", recordFile(values, 1));
  seedFile("recordfile", recordFile(dataRecords, 2));
  seedFile("recordfile", recordFile({&integer, records[0].get()}, 1));
  Bytes cut = recordFile(dataRecords, 2);
  cut.resize(cut.size() - 30);  // into the second record: no end marker
  seedFile("recordfile", cut);
  seedFile("recordfile", recordFile(values, 2, false));  // never closed
  Bytes damaged = recordFile(values, 2);
  damaged[recordfile::kHeaderBytes + recordfile::kFrameBytes + 1] ^= 0x10;  // the first payload: a bad checksum
  seedFile("recordfile", damaged);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s <folder>\n", argv[0]);
    return 2;
  }
  g_root = argv[1];
  ::mkdir(g_root.c_str(), 0777);
  for (unsigned k = 0; k < fuzz::kClassCount; ++k) {
    for (ObjPtr<Value> const &v : samplesOf(k)) {
      for (int version : {1, 2}) {
        MemoryOutputStream out(version);
        v->serialize(out);
        Bytes const body(out.getBuffer(), out.getBuffer() + out.getSize());
        seed("payload", static_cast<unsigned char>(k | (version == 1 ? 0x40 : 0)), body);
      }
      BaseString<unsigned short> text, extra;
      try {
        v->getXMLText(text, extra);
        seed("text", static_cast<unsigned char>(k), unitsOf(text));
      } catch (Exception const &) {
      }
    }
  }
  BaseString<unsigned short> const mixed = wide("12 -3.5e2 true caf\xC3\xA9 \xF0\x9F\x98\x80");
  BaseString<char> const utf8 = util::ConvertStringtoUTF8(mixed);
  BaseString<unsigned short> base64;
  unsigned char const raw[] = {0, 1, 2, 250, 251, 252, 253};
  util::Base64::Encode(raw, sizeof raw, base64);
  double const pi = 3.141592653589793;
  seed("textutil", 0, Bytes(utf8.getBuffer(), utf8.getBuffer() + utf8.getLength()));
  seed("textutil", 1, unitsOf(mixed));
  seed("textutil", 2, Bytes(utf8.getBuffer(), utf8.getBuffer() + utf8.getLength()));
  seed("textutil", 3, unitsOf(base64));
  seed("textutil", 4,
       Bytes(reinterpret_cast<unsigned char const *>(&pi), reinterpret_cast<unsigned char const *>(&pi) + 8));

  ::mkdir(CClassRegistryFile::GetClassesDirectory().getBuffer(), 0777);
  CZedClassInfo const info("Marlix.fuzz.Seed", "A class & its <library>", "/opt/app/libseed.so", true);
  CClassRegistryFile::ExportDataFile(info);
  std::string const path = CClassRegistryFile::GetFilePath(ClassTag("Marlix.fuzz.Seed")).getBuffer();
  Bytes const file = readFile(path);
  CClassRegistryFile::RemoveDataFile(ClassTag("Marlix.fuzz.Seed"));
  seed("registration", 0, file);
  std::string const fields = std::string("A class & its <library>") + '\0' + "/opt/app/libseed.so" + '\0' + "p";
  seed("registration", 1, Bytes(fields.begin(), fields.end()));
  recordSeeds();
  std::printf("%d seeds in %s\n", g_count, g_root.c_str());
  return 0;
}

// MakeSeeds.cpp - writes the seed corpora of the fuzz targets with the library's own writers
//
// Usage: quarn_fuzz_seeds <folder>; writes <folder>/{payload,text,textutil,registration}/.
// Each seed is a first byte that chooses what the target reads, then what
// serialize, getXMLText, the text utilities or registering wrote.
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

void seed(char const *target, unsigned char selector, Bytes const &body) {
  std::string const folder = g_root + "/" + target;
  ::mkdir(folder.c_str(), 0777);
  char name[32];
  std::snprintf(name, sizeof name, "/seed-%04d", g_count++);
  std::FILE *file = std::fopen((folder + name).c_str(), "wb");
  if (!file) return;
  std::fputc(selector, file);
  std::fwrite(body.data(), 1, body.size(), file);
  std::fclose(file);
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
  return samples;
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
  Bytes file;
  if (std::FILE *f = std::fopen(path.c_str(), "rb")) {
    for (int c; (c = std::fgetc(f)) != EOF;) file.push_back(static_cast<unsigned char>(c));
    std::fclose(f);
  }
  CClassRegistryFile::RemoveDataFile(ClassTag("Marlix.fuzz.Seed"));
  seed("registration", 0, file);
  std::string const fields = std::string("A class & its <library>") + '\0' + "/opt/app/libseed.so" + '\0' + "p";
  seed("registration", 1, Bytes(fields.begin(), fields.end()));
  std::printf("%d seeds in %s\n", g_count, g_root.c_str());
  return 0;
}

// main.cpp - the example host: register a component library, create its classes by name
//
// Usage: quarn_example_host [path of the example component library]
//
// Without a path it uses the library installed beside it (../lib), or else
// the one built with it.
//
// 1. Writes the registration files of the two example classes, naming the
//    component library (the files go in the "classes" folder beside libquarn).
// 2. Creates each class by name alone: the class system finds its
//    registration file, loads the library and calls its DllCreateInstance.
// 3. Asks each object for its interface by type (the interfaces' statics live
//    in libquarnExampleInterfaces, which the host links) and uses it.
// 4. Has the components make records of typed values (one DataRecord a
//    record, with named properties), writes the records to a record file
//    (each framed and checksummed), reads them back into a record, checks
//    that each equals its original property by property, tells how many value
//    objects the pools handed out again instead of allocating, and how to look
//    into the file with `quarn dump` (the file is kept for that).
// 5. Runs the sampler inside a run context: the host fills the run's
//    properties, makes the sampler current with its parameter "scale" and
//    seeds the run's random source; the sampler reads the parameter through
//    the context for each record and writes its draw into the record. A
//    second run with the same seed gives the same draws.
// 6. Removes the registration files again, and exits 0 (1 on any failure).
#include <example/iCounter.h>
#include <example/iGreeting.h>
#include <example/iSampler.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/Class.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/eval/ComponentInfo.h>
#include <quarn/eval/RunContext.h>
#include <quarn/util/RunEnvironment.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/RecordFileWriter.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// The host knows the classes by name only, and their interfaces by type.
constexpr char kGreeter[] = "Marlix.example.Greeter";
constexpr char kCounter[] = "Marlix.example.Counter";
constexpr char kSampler[] = "Marlix.example.Sampler";

// The component library installed beside this program, else the one built with it.
std::string defaultLibrary() {
  std::error_code error;
  std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  std::filesystem::path installed = self.parent_path() / QUARN_EXAMPLE_INSTALLED_COMPONENT;
  if (!error && std::filesystem::exists(installed, error)) return installed.lexically_normal().string();
  return QUARN_EXAMPLE_COMPONENT;
}

void registerExample(quarn::Array<quarn::CZedClassInfo> const &classes, char const *library) {
  quarn::CZedLibraryUtils::RegisterLibraryClasses(classes, library);
  for (quarn::CZedClassInfo const &info : classes)
    std::printf("registered %s -> %s\n  in %s\n", info.progid.getBuffer(), library,
                quarn::CClassRegistryFile::GetFilePath(quarn::ClassTag(info.progid)).getBuffer());
}

void useGreeter() {
  // By name: the bound class if the library is loaded already, else the library
  // named by the registration file. The object comes with a count of 0.
  quarn::Object *object = quarn::Class::getClassInstance(quarn::ClassTag(kGreeter));
  // getAs throws NotImplementedException if the object lacks the interface.
  auto *greeting = object->getAs<example::iGreeting>();
  quarn::Ptr<example::iGreeting> held(greeting);  // the one reference; released at the end of scope
  std::printf("%s says: %s\n", object->getClassTag().getName(), held->greet("quarn").getBuffer());
}

void useCounters() {
  // createInstance goes to the component library every time (no class lookup first).
  quarn::Ptr<quarn::DynamicObject> first(quarn::createInstance(kCounter));
  quarn::Ptr<quarn::DynamicObject> second(quarn::createInstance(kCounter));
  auto *a = first->getAs<example::iCounter>();
  auto *b = second->getAs<example::iCounter>();
  for (int i = 0; i < 3; ++i) a->increment();
  b->increment();
  std::printf("%s: first counted to %d, second to %d\n", kCounter, a->getCount(), b->getCount());
}

// Pool statistics of one value class: instances made by the allocator, and
// instances handed out again from the pool.
template <class T>
void addPoolCounts(unsigned long &made, unsigned long &reused) {
  made += T::m_class.getCreatedCount();
  reused += T::m_class.getReusedCount();
}

void poolCounts(unsigned long &made, unsigned long &reused) {
  made = reused = 0;
  addPoolCounts<quarn::IntegerValue>(made, reused);
  addPoolCounts<quarn::StringValue>(made, reused);
  addPoolCounts<quarn::DoubleValue>(made, reused);
  addPoolCounts<quarn::DoubleArrayValue>(made, reused);
  addPoolCounts<quarn::BitsetValue>(made, reused);
  addPoolCounts<quarn::DateTimeValue>(made, reused);
}

// One record: what the components produced for record `n`, as named, typed
// properties. The record owns its values; releasing it returns them to their
// pools.
quarn::Ptr<quarn::DataRecord> makeRecord(example::iCounter &counter, example::iGreeting &greeter, int n) {
  using Name = quarn::BaseString<unsigned short>;
  quarn::Ptr<quarn::DataRecord> record(quarn::DataRecord::newInstance());
  quarn::util::defineIntegerValue(*record, Name("count"), counter.increment());
  std::string const who = "record " + std::to_string(n);
  quarn::util::defineStringValue(*record, Name("greeting"), Name(greeter.greet(who.c_str()).getBuffer()));
  quarn::util::defineDoubleValue(*record, Name("ratio"), n / 8.0);
  quarn::Array<double> series;
  for (int i = 0; i <= n % 4; ++i) series.append(i * 0.5);
  quarn::util::defineDoubleArrayValue(*record, Name("series"), series);
  auto &flags =
      static_cast<quarn::BitsetValue &>(*record->defineProperty(Name("flags"), quarn::BitsetValue::Tag)->getValue());
  flags.resize(16);
  flags.setOn(static_cast<unsigned int>(n % 16));
  // A time stamp with its zone: record n is n minutes after 2026-01-01 09:00 UTC, shown in Eastern time.
  auto &stamp = static_cast<quarn::DateTimeValue &>(
      *record->defineProperty(Name("stamp"), quarn::DateTimeValue::Tag)->getValue());
  stamp.set(2026, 1, 1, 9, 0, 0, 0);
  stamp.addMinutes(n);
  stamp.setTimeZone(Name("EST"), true);
  stamp.setDateTimeFormat(Name("%Y-%m-%d %H:%M:%S %Z").getBuffer());
  stamp.getJulian();  // written with the record, so the copy read back compares equal
  return record;
}

// Whether two records hold the same names with equal values.
bool sameRecord(quarn::DataRecord const &a, quarn::DataRecord const &b) {
  if (a.getPropertyCount() != b.getPropertyCount()) return false;
  for (unsigned int i = 0; i < a.getPropertyCount(); ++i) {
    quarn::iProperty const *p = a.getProperty(i), *q = b.findProperty(p->getName());
    if (!q || p->getValue()->compare(*q->getValue()) != 0) return false;
  }
  return true;
}

void useValues() {
  constexpr int kRecords = 100;
  quarn::Ptr<example::iCounter> counter(
      quarn::Class::getClassInstance(quarn::ClassTag(kCounter))->getAs<example::iCounter>());
  quarn::Ptr<example::iGreeting> greeter(
      quarn::Class::getClassInstance(quarn::ClassTag(kGreeter))->getAs<example::iGreeting>());
  std::string const path = (std::filesystem::temp_directory_path() / "quarn-demo-records.qrf").string();

  // Make the records one at a time, as a pipeline does, and write each out.
  // Each record is handed back after writing, so its values return to their
  // pools and the next record reuses them.
  std::vector<quarn::Ptr<quarn::DataRecord>> kept;
  {
    quarn::RecordFileWriter out(path.c_str());
    for (int n = 0; n < kRecords; ++n) {
      quarn::Ptr<quarn::DataRecord> record = makeRecord(*counter, *greeter, n);
      out.write(*record);
      if (n % 10 == 0) kept.push_back(std::move(record));  // a sample to compare later
    }
    out.close();
  }
  std::printf("wrote %d records of %u properties to %s (%ju bytes)\n", kRecords, kept.front()->getPropertyCount(),
              path.c_str(), static_cast<std::uintmax_t>(std::filesystem::file_size(path)));

  // Read them back into one record; each value is made by its class name.
  unsigned int equal = 0;
  int n = 0;
  {
    quarn::RecordFileReader in(path.c_str());
    quarn::Ptr<quarn::DataRecord> record(quarn::DataRecord::newInstance());
    for (; in.next(*record); ++n) {
      if (n % 10 == 0 && sameRecord(*record, *kept[static_cast<std::size_t>(n / 10)])) ++equal;
      if (n == kRecords - 1) {
        quarn::BaseString<unsigned short> text;
        quarn::util::findStringValue(*record, quarn::BaseString<unsigned short>("greeting"), text);
        quarn::BaseString<char> utf8 = quarn::util::ConvertStringtoUTF8(text);
        std::printf("last record: count %d, text \"%s\"\n",
                    record->findProperty(quarn::BaseString<unsigned short>("count"))->getValue()->getInteger(),
                    utf8.getBuffer());
        record->findProperty(quarn::BaseString<unsigned short>("stamp"))->getValue()->getString(text);
        std::printf("last record's time stamp: %s\n", quarn::util::ConvertStringtoUTF8(text).getBuffer());
      }
    }
  }
  std::printf("read %d records back; %u of %zu samples compare equal to the originals\n", n, equal, kept.size());
  std::printf("look inside with: quarn dump %s\n", path.c_str());
  if (n != kRecords || equal != kept.size())
    throw quarn::Exception("records read back differ from the records written");

  kept.clear();
  unsigned long made = 0, reused = 0;
  poolCounts(made, reused);
  std::printf("value objects: %lu from the allocator, %lu handed out again by the pools\n", made, reused);
}

// One run of the sampler over `count` fresh records, inside `context`; the draws.
std::vector<double> runSampler(example::iSampler &sampler, quarn::iContext &context, int count, bool print) {
  std::vector<double> draws;
  for (int n = 0; n < count; ++n) {
    quarn::Ptr<quarn::DataRecord> record(quarn::DataRecord::newInstance());
    quarn::util::defineIntegerValue(*record, quarn::BaseString<unsigned short>("n"), n);
    draws.push_back(sampler.sample(context, *record));
    if (print)
      std::printf("  record %d: sample %.4f\n", n,
                  record->findProperty(quarn::BaseString<unsigned short>("sample"))->getValue()->getDouble());
  }
  return draws;
}

void useRunContext() {
  using Name = quarn::BaseString<unsigned short>;
  constexpr long kSeed = 2026;
  // The run: its properties, as the platform would fill them in.
  quarn::Ptr<quarn::RunContext> context(quarn::RunContext::newInstance());
  quarn::iPropertyCollection &run = *context->getRunProperties();
  Name user;
  quarn::util::getUserName(user);  // the operating system's answer
  quarn::util::defineStringValue(run, Name("USERNAME"), user);
  quarn::util::defineStringValue(run, Name("RunDirectoryLocal"),
                                 Name(std::filesystem::temp_directory_path().string().c_str()));
  Name runUser("nobody"), temp;
  quarn::util::getUserName(context.get(), runUser);  // what a component reads back
  quarn::util::getLocalRunDirectoryTemp(context.get(), temp);
  std::printf("run context: user %s, temporary directory %s\n", quarn::util::ConvertStringtoUTF8(runUser).getBuffer(),
              quarn::util::ConvertStringtoUTF8(temp).getBuffer());

  // The component to run, and its parameters.
  quarn::Ptr<quarn::ComponentInfo> info(quarn::ComponentInfo::newInstance());
  info->setComponentClass(quarn::ClassTag(kSampler));
  quarn::util::defineDoubleValue(*info, Name("scale"), 100.0);
  context->setComponentInfo(info.get());
  quarn::Ptr<example::iSampler> sampler(
      quarn::Class::getClassInstance(quarn::ClassTag(kSampler))->getAs<example::iSampler>());

  constexpr int kRecords = 5;
  std::printf("%s with scale 100, seed %ld:\n", kSampler, kSeed);
  context->getRandom()->setSeed(kSeed);
  std::vector<double> const first = runSampler(*sampler, *context, kRecords, true);
  context->getRandom()->setSeed(kSeed);
  bool const same = runSampler(*sampler, *context, kRecords, false) == first;
  std::printf("the same seed again gives %s draws\n", same ? "the same" : "different");
  if (!same) throw quarn::Exception("a seeded run did not repeat its draws");
}

}  // namespace

int main(int argc, char **argv) {
  std::string const chosen = argc > 1 ? argv[1] : defaultLibrary();
  char const *library = chosen.c_str();
  quarn::Array<quarn::CZedClassInfo> classes;
  classes.append(quarn::CZedClassInfo(kGreeter, "Says hello to whoever it is given", library));
  classes.append(quarn::CZedClassInfo(kCounter, "Counts, one instance at a time", library));
  classes.append(quarn::CZedClassInfo(kSampler, "Draws a scaled random sample into each record", library));
  int status = 0;
  try {
    registerExample(classes, library);
    useGreeter();
    useCounters();
    useValues();
    useRunContext();
  } catch (std::exception const &e) {
    std::fprintf(stderr, "quarn_example_host: %s\n", e.what());
    status = 1;
  }
  try {
    unsigned int removed = quarn::CZedLibraryUtils::UnregisterLibraryClasses(classes, library);
    std::printf("unregistered %u classes\n", removed);
  } catch (std::exception const &e) {
    std::fprintf(stderr, "quarn_example_host: %s\n", e.what());
    status = 1;
  }
  return status;
}

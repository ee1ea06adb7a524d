// main.cpp - the example host: register a component library, create its classes by name
//
// Usage: quarn_example_host [path of the example component library]
//
// 1. Writes the registration files of the two example classes, naming the
//    component library (the files go in the "classes" folder beside libquarn).
// 2. Creates each class by name alone: the class system finds its
//    registration file, loads the library and calls its DllCreateInstance.
// 3. Asks each object for its interface by tag and uses it.
// 4. Has the components make records of typed values (one ValueArrayValue a
//    record), writes the records to a file, reads them back into fresh
//    values, checks that each compares equal to its original, and tells how
//    many value objects the pools handed out again instead of allocating.
// 5. Removes the registration files again, and exits 0 (1 on any failure).
#include <example/iCounter.h>
#include <example/iGreeting.h>
#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/Class.h>
#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// The host knows the classes and interfaces by name only.
constexpr char kGreeter[] = "Marlix.example.Greeter";
constexpr char kCounter[] = "Marlix.example.Counter";
constexpr char kGreetingInterface[] = "Marlix.interface.iGreeting";
constexpr char kCounterInterface[] = "Marlix.interface.iCounter";

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
  auto *greeting = static_cast<example::iGreeting *>(object->getAs(quarn::ClassTag(kGreetingInterface)));
  quarn::Ptr<example::iGreeting> held(greeting);  // the one reference; released at the end of scope
  std::printf("%s says: %s\n", object->getClassTag().getName(), held->greet("quarn").getBuffer());
}

void useCounters() {
  // createInstance goes to the component library every time (no class lookup first).
  quarn::Ptr<quarn::DynamicObject> first(quarn::createInstance(kCounter));
  quarn::Ptr<quarn::DynamicObject> second(quarn::createInstance(kCounter));
  auto *a = static_cast<example::iCounter *>(first->getAs(quarn::ClassTag(kCounterInterface)));
  auto *b = static_cast<example::iCounter *>(second->getAs(quarn::ClassTag(kCounterInterface)));
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
  addPoolCounts<quarn::ValueArrayValue>(made, reused);
  addPoolCounts<quarn::IntegerValue>(made, reused);
  addPoolCounts<quarn::StringValue>(made, reused);
  addPoolCounts<quarn::DoubleValue>(made, reused);
  addPoolCounts<quarn::DoubleArrayValue>(made, reused);
  addPoolCounts<quarn::BitsetValue>(made, reused);
  addPoolCounts<quarn::DateTimeValue>(made, reused);
}

// One record: what the components produced for record `n`, as typed values.
// The record owns its elements; handing it back returns them to their pools.
quarn::ObjPtr<quarn::ValueArrayValue> makeRecord(example::iCounter &counter, example::iGreeting &greeter, int n) {
  quarn::ObjPtr<quarn::ValueArrayValue> record(quarn::ValueArrayValue::newInstance());
  quarn::ObjPtr<quarn::IntegerValue> count(quarn::IntegerValue::newInstance());
  *count = counter.increment();
  record->appendValue(count.detach());
  quarn::ObjPtr<quarn::StringValue> text(quarn::StringValue::newInstance());
  std::string const who = "record " + std::to_string(n);
  *text = greeter.greet(who.c_str()).getBuffer();  // widened byte by byte
  record->appendValue(text.detach());
  quarn::ObjPtr<quarn::DoubleValue> ratio(quarn::DoubleValue::newInstance());
  *ratio = n / 8.0;
  record->appendValue(ratio.detach());
  quarn::ObjPtr<quarn::DoubleArrayValue> series(quarn::DoubleArrayValue::newInstance());
  for (int i = 0; i <= n % 4; ++i) series->append(i * 0.5);
  record->appendValue(series.detach());
  quarn::ObjPtr<quarn::BitsetValue> flags(quarn::BitsetValue::newInstance());
  flags->resize(16);
  flags->setOn(static_cast<unsigned int>(n % 16));
  record->appendValue(flags.detach());
  // A time stamp with its zone: record n is n minutes after 2026-01-01 09:00 UTC, shown in Eastern time.
  quarn::ObjPtr<quarn::DateTimeValue> stamp(quarn::DateTimeValue::newInstance());
  stamp->set(2026, 1, 1, 9, 0, 0, 0);
  stamp->addMinutes(n);
  stamp->setTimeZone(quarn::BaseString<unsigned short>("EST"), true);
  stamp->setDateTimeFormat(quarn::BaseString<unsigned short>("%Y-%m-%d %H:%M:%S %Z").getBuffer());
  stamp->getJulian();  // written with the record, so the copy read back compares equal
  record->appendValue(stamp.detach());
  return record;
}

void useValues() {
  constexpr int kRecords = 100;
  quarn::Ptr<example::iCounter> counter(static_cast<example::iCounter *>(
      quarn::Class::getClassInstance(quarn::ClassTag(kCounter))->getAs(quarn::ClassTag(kCounterInterface))));
  quarn::Ptr<example::iGreeting> greeter(static_cast<example::iGreeting *>(
      quarn::Class::getClassInstance(quarn::ClassTag(kGreeter))->getAs(quarn::ClassTag(kGreetingInterface))));
  std::string const path = (std::filesystem::temp_directory_path() / "quarn-demo-records.bin").string();

  // Make the records one at a time, as a pipeline does, and write each out.
  // Each record is handed back after writing, so its values return to their
  // pools and the next record reuses them.
  std::vector<quarn::ObjPtr<quarn::ValueArrayValue>> kept;
  {
    quarn::FileOutputStream out(path.c_str());
    for (int n = 0; n < kRecords; ++n) {
      quarn::ObjPtr<quarn::ValueArrayValue> record = makeRecord(*counter, *greeter, n);
      record->serialize(out);
      if (n % 10 == 0) kept.push_back(std::move(record));  // a sample to compare later
    }
    out.close();
  }
  std::printf("wrote %d records of %u values to %s (%ju bytes)\n", kRecords, kept.front()->getSize(), path.c_str(),
              static_cast<std::uintmax_t>(std::filesystem::file_size(path)));

  // Read them back into fresh records; each element is made by its class name.
  unsigned int equal = 0;
  {
    quarn::FileInputStream in(path.c_str());
    for (int n = 0; n < kRecords; ++n) {
      quarn::ObjPtr<quarn::ValueArrayValue> record(quarn::ValueArrayValue::newInstance());
      record->deserialize(in);
      if (n % 10 == 0 && record->compare(*kept[static_cast<std::size_t>(n / 10)]) == 0) ++equal;
      if (n == kRecords - 1) {
        quarn::BaseString<unsigned short> text;
        record->getIthValue(1).getString(text);
        quarn::BaseString<char> utf8 = quarn::util::ConvertStringtoUTF8(text);
        std::printf("last record: count %d, text \"%s\"\n", record->getIthValue(0).getInteger(), utf8.getBuffer());
        record->getIthValue(5).getString(text);
        std::printf("last record's time stamp: %s\n", quarn::util::ConvertStringtoUTF8(text).getBuffer());
      }
    }
  }
  std::filesystem::remove(path);
  std::printf("read %d records back; %u of %zu samples compare equal to the originals\n", kRecords, equal,
              kept.size());
  if (equal != kept.size()) throw quarn::Exception("records read back differ from the records written");

  kept.clear();
  unsigned long made = 0, reused = 0;
  poolCounts(made, reused);
  std::printf("value objects: %lu from the allocator, %lu handed out again by the pools\n", made, reused);
}

}  // namespace

int main(int argc, char **argv) {
  char const *library = argc > 1 ? argv[1] : QUARN_EXAMPLE_COMPONENT;
  quarn::Array<quarn::CZedClassInfo> classes;
  classes.append(quarn::CZedClassInfo(kGreeter, "Says hello to whoever it is given", library));
  classes.append(quarn::CZedClassInfo(kCounter, "Counts, one instance at a time", library));
  int status = 0;
  try {
    registerExample(classes, library);
    useGreeter();
    useCounters();
    useValues();
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

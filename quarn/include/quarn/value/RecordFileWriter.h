// RecordFileWriter.h - writes values to a record file, each framed and checksummed
//
// The format is in RecordFile.h. Each record is any object with a byte-stream
// form, written with its class name: a value (a ValueArrayValue, or any other
// value class), which a reader makes by name, or a DataRecord, which a reader
// reads into a record of its own (RecordFileReader::next(Object &)). A record is serialised into memory first, so a value
// that fails to serialise writes nothing and the file stays as it was.
// close() ends the file with an end marker; a file whose writer never closed
// it reads as cut after its last whole record.
//
// kAppend adds to an existing record file (or makes a new one): the new
// records follow the file's end marker, in the stream version the file
// names, and close() writes a new end marker after them. A file that does not
// end with an intact end marker is refused ("Cannot append to %hs: ...").
// File failures are those of FileOutputStream ("Failed to write to file
// %hs.", ...).
//
//   RecordFileWriter out("records.qrf");
//   for (...) out.write(*record);
//   out.close();
#pragma once

#include <quarn/core/Export.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/RecordFile.h>

#include <cstdint>

namespace quarn {

class Object;

/// Not thread-safe; not copyable.
class QUARN_API RecordFileWriter {
 public:
  enum Mode { kCreate, kAppend };

  /// Creates (or truncates) `path` and writes its header, or with kAppend
  /// opens it to add records. `version` is the stream version of the values
  /// in a new file (an appended file keeps its own).
  explicit RecordFileWriter(char const *path, Mode mode = kCreate, int version = 2);
  RecordFileWriter(RecordFileWriter const &) = delete;
  RecordFileWriter &operator=(RecordFileWriter const &) = delete;
  /// Closes the file; a failure here is not reported (call close() to see it).
  ~RecordFileWriter();

  /// Appends `record` (a value, a DataRecord: any object with a byte-stream form) as the next record.
  void write(Object const &record);
  /// Writes the end marker and closes the file; closing twice does nothing.
  void close();

  /// Records in the file, those it had before appending included.
  std::uint64_t getCount() const noexcept { return m_count; }
  RecordFileHeader const &getHeader() const noexcept { return m_header; }

 private:
  RecordFileHeader m_header;
  std::uint64_t m_count;  // set with m_header, so no initialiser of its own
  FileOutputStream m_file;
  MemoryOutputStream m_buffer;  // the record being written
};

}  // namespace quarn

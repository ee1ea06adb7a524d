// RecordFileReader.h - reads the records of a record file, checking every byte
//
// The format is in RecordFile.h. next() reads the records in order, each
// made by its class name and read from its own bounded slice of bytes, so a
// damaged record cannot read into the next; seek() goes to any record by
// number (from an index of offsets built while reading; over a file it moves
// back as well as forward, over a stream only forward).
//
// Damage is an Exception that names the record (numbered from 0), the offset
// of its frame, and what was wrong; the reader has then moved past the
// damage, so the next call goes on with the record after it:
//   "Record 3 at offset 120: checksum mismatch (stored 1C2D3E4F, computed 0A0B0C0D)"
//   "Record 3 at offset 120: EOF reading int header" (the value's own message,
//       with its annotation lines)
//   "Record 3 at offset 120: the value read 20 of its 28 bytes"
//   "Record 3 at offset 120: frame damaged; reading goes on at offset 160"
//       (a damaged length: the next intact frame is searched for)
//   "Record 3 at offset 120: file cut after 10 of 28 bytes"
//   "File cut at offset 160 after 4 records: no end marker"
//   "End marker at offset 160 counts 5 records, but 4 were found"
//   "End marker at offset 160 damaged; nothing intact follows it"
//   "End marker at offset 160 cut after 9 of 16 bytes"
// A file cut anywhere thus reads every whole record and then says where it
// was cut; after a cut next() answers false. A damaged header throws from
// the constructor (the messages of RecordFile.h's header checks). Nothing
// read is trusted: a record's storage grows only as its bytes arrive.
//
// Whether a class name in a record may load its component library is decided
// by the reader's own policy (setLoadingPolicy), else by a StreamLoadingScope
// on the stream the reader reads, else by the process policy
// (StreamLoadingPolicy.h): records are read from slices of their own, which
// follow it.
//
//   RecordFileReader in("records.qrf");
//   ObjPtr<Value> record;
//   while (in.next(record)) use(*record);
//
//   Ptr<DataRecord> record(DataRecord::newInstance());   // or read into one object
//   while (in.next(*record)) use(*record);
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/RecordFile.h>
#include <quarn/value/StreamLoadingPolicy.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quarn {

class Object;
class Value;

/// Not thread-safe; not copyable.
class QUARN_API RecordFileReader {
 public:
  /// Opens `path` and reads its header.
  explicit RecordFileReader(char const *path);
  /// Reads the header from `in`, which the caller keeps alive while reading;
  /// offsets count from where `in` stood.
  explicit RecordFileReader(iByteInputStream &in);
  RecordFileReader(RecordFileReader const &) = delete;
  RecordFileReader &operator=(RecordFileReader const &) = delete;
  ~RecordFileReader();

  RecordFileHeader const &getHeader() const noexcept { return m_header; }

  /// Reads every record from now on under `policy`, whatever the scopes of
  /// the stream or the process policy say.
  void setLoadingPolicy(StreamLoadingPolicy policy) { m_policy = std::move(policy); }

  /// Reads the next record into `record` (a new value of the class the
  /// record names, handed back with `record`); false at the end of the file.
  bool next(ObjPtr<Value> &record);
  /// As next(ObjPtr<Value> &), for a file of values or data records (such as
  /// DataRecord): a record of any other class is damage ("Class %hs is
  /// neither a value nor a data record").
  bool next(ObjPtr<Object> &record);
  /// Reads the next record into `record`, an object of the class the record
  /// names (a DataRecord, say, or a value kept from record to record), which
  /// it replaces the content of; false at the end of the file. A record of
  /// another class is damage: "the record holds a %hs, not a %hs".
  bool next(Object &record);
  /// Reads the next record's checked bytes (its class name framing, then the
  /// value's payload) without making anything; false at the end of the file.
  /// The bytes stay valid until the next call.
  bool nextBytes(unsigned char const *&bytes, std::uint32_t &size);

  /// Makes record `index` the one next() reads. Throws "Record %llu is not in
  /// the file, which holds %llu records" past the last one (over a stream,
  /// where nothing is read twice, one past the last one is left for next()
  /// to find missing).
  void seek(std::uint64_t index);

  /// The number of the record next() reads.
  std::uint64_t getIndex() const noexcept { return m_index; }
  /// The number, frame offset and payload length of the record read last.
  std::uint64_t getRecordIndex() const noexcept { return m_recordIndex; }
  std::uint64_t getRecordOffset() const noexcept { return m_recordOffset; }
  std::uint32_t getRecordLength() const noexcept { return m_payloadSize; }
  /// The offset of the next byte to read (the file's size once at its end).
  std::uint64_t getOffset() const noexcept { return m_consumed - (m_ahead.size() - m_aheadStart); }

 private:
  enum class Step { kRecord, kEnd };
  void readHeader();
  template <class Into>
  bool nextInto(Into into);
  Step step(bool readPayload);
  void moveTo(std::uint64_t offset);
  std::size_t take(unsigned char *data, std::size_t count);
  bool fill(std::size_t count);
  void skip(std::uint64_t count);
  std::uint64_t resync();
  [[noreturn]] void failRecord(char const *format, ...);

  std::unique_ptr<FileInputStream> m_file;  // when reading a path
  iByteInputStream *m_in;
  std::uint64_t m_fileSize = 0;        // of m_file
  std::uint64_t m_consumed = 0;        // the offset after the bytes taken from m_in
  std::vector<unsigned char> m_ahead;  // bytes taken from m_in but not yet read, from m_aheadStart on
  std::size_t m_aheadStart = 0;
  std::vector<unsigned char> m_payload;  // of the record read last: m_payloadSize bytes
  std::uint32_t m_payloadSize = 0;
  std::vector<std::uint64_t> m_offsets;  // of the records seen so far, by number
  RecordFileHeader m_header;
  std::optional<StreamLoadingPolicy> m_policy;  // set by setLoadingPolicy
  std::uint64_t m_index = 0;
  std::uint64_t m_recordIndex = 0;
  std::uint64_t m_recordOffset = 0;
  bool m_afterEndMarker = false;  // the last thing read was an end marker
  bool m_atEnd = false;
};

}  // namespace quarn

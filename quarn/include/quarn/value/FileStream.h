// FileStream.h - byte streams over files (C stdio underneath)
//
// FileOutputStream creates or truncates a file (or, with kAppend, creates it
// or writes after its end) and writes to it; FileInputStream reads one and can
// move to any byte of it. Each owns its FILE and closes it in close() or in
// its destructor. A file that cannot be opened throws Exception
// ("Failed to open file %hs for reading." / "... for writing.") naming the
// path; a failed write, or a failed flush when closing, throws
// "Failed to write to file %hs."; writing after close() throws
// "Cannot write to closed file %hs.". Reading after close() reads nothing, so
// the primitive that asked reports its own EOF message. A failed seek throws
// "Failed to seek in file %hs.".
#pragma once

#include <quarn/core/Export.h>
#include <quarn/value/ByteStream.h>
#include <quarnCore/BaseString.h>

#include <cstdint>
#include <cstdio>

namespace quarn {

/// Writes to a file. Not thread-safe; not copyable.
class QUARN_API FileOutputStream : public iByteOutputStream {
 public:
  /// kTruncate starts the file empty; kAppend keeps its bytes and writes after them.
  enum Mode { kTruncate, kAppend };
  explicit FileOutputStream(char const *path, int version = 2, Mode mode = kTruncate);
  FileOutputStream(FileOutputStream const &) = delete;
  FileOutputStream &operator=(FileOutputStream const &) = delete;
  /// Closes the file; a failure here is not reported (call close() to see it).
  ~FileOutputStream() override;

  void write(void const *data, int count) override;

  /// Flushes and closes the file; closing twice does nothing.
  void close();
  bool isOpen() const noexcept { return m_file != nullptr; }

 private:
  BaseString<char> m_path;  // first: copied before the file is opened, so a throw cannot leak the file
  std::FILE *m_file;
};

/// Reads from a file. Not thread-safe; not copyable.
class QUARN_API FileInputStream : public iByteInputStream {
 public:
  explicit FileInputStream(char const *path, int version = 2);
  FileInputStream(FileInputStream const &) = delete;
  FileInputStream &operator=(FileInputStream const &) = delete;
  ~FileInputStream() override;

  /// Reads up to `count` bytes; 0 at the end of the file, after close(), or for count <= 0.
  int read(void *data, int count) override;

  void close() noexcept;
  bool isOpen() const noexcept { return m_file != nullptr; }

  /// Moves to byte `offset` from the start; past the end, reads then read nothing.
  void seek(std::uint64_t offset);

 private:
  BaseString<char> m_path;  // first: copied before the file is opened, so a throw cannot leak the file
  std::FILE *m_file;
};

}  // namespace quarn

// FileStream.cpp - byte streams over files
//
// Thin wrappers over fopen / fwrite / fread: stdio does the buffering, so the
// primitives' small writes cost no system call each.
#include <quarn/value/FileStream.h>
#include <quarnCore/Exception.h>

namespace quarn {

namespace {

[[noreturn, gnu::cold, gnu::noinline]] void failFile(char const *format, char const *path) {
  throw Exception(format, path);
}

std::FILE *openFile(char const *path, char const *mode, char const *failure) {
  std::FILE *file = path ? std::fopen(path, mode) : nullptr;
  if (!file) failFile(failure, path);
  return file;
}

}  // namespace

FileOutputStream::FileOutputStream(char const *path, int version, Mode mode)
    : m_path(path), m_file(openFile(path, mode == kAppend ? "ab" : "wb", "Failed to open file %hs for writing.")) {
  this->version = version;
}

FileOutputStream::~FileOutputStream() {
  if (m_file) std::fclose(m_file);
}

void FileOutputStream::write(void const *data, int count) {
  if (!m_file) [[unlikely]]
    failFile("Cannot write to closed file %hs.", m_path.getBuffer());
  if (count <= 0) return;
  if (std::fwrite(data, 1, static_cast<std::size_t>(count), m_file) != static_cast<std::size_t>(count)) [[unlikely]]
    failFile("Failed to write to file %hs.", m_path.getBuffer());
}

void FileOutputStream::close() {
  if (!m_file) return;
  int result = std::fclose(m_file);
  m_file = nullptr;
  if (result != 0) failFile("Failed to write to file %hs.", m_path.getBuffer());
}

FileInputStream::FileInputStream(char const *path, int version)
    : m_path(path), m_file(openFile(path, "rb", "Failed to open file %hs for reading.")) {
  this->version = version;
}

FileInputStream::~FileInputStream() { close(); }

int FileInputStream::read(void *data, int count) {
  if (!m_file || count <= 0) return 0;
  return static_cast<int>(std::fread(data, 1, static_cast<std::size_t>(count), m_file));
}

void FileInputStream::seek(std::uint64_t offset) {
  if (!m_file || offset > static_cast<std::uint64_t>(INT64_MAX) ||
      fseeko(m_file, static_cast<off_t>(offset), SEEK_SET) != 0) [[unlikely]]
    failFile("Failed to seek in file %hs.", m_path.getBuffer());
}

void FileInputStream::close() noexcept {
  if (m_file) std::fclose(m_file);
  m_file = nullptr;
}

}  // namespace quarn

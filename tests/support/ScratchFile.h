// ScratchFile.h - a file of the test's own in the temporary folder, removed afterwards
//
// The name carries the process id, so test programs running side by side do
// not meet. bytes() and write() read and replace the whole file; cut() and
// flip() damage it in place.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quarn::test {

struct ScratchFile {
  std::string path;

  explicit ScratchFile(std::string const &name)
      : path((std::filesystem::temp_directory_path() / ("quarn-" + std::to_string(::getpid()) + "-" + name)).string()) {
    std::filesystem::remove(path);
  }
  ~ScratchFile() { std::filesystem::remove(path); }
  ScratchFile(ScratchFile const &) = delete;
  ScratchFile &operator=(ScratchFile const &) = delete;

  char const *c_str() const { return path.c_str(); }
  std::vector<unsigned char> bytes() const {
    std::ifstream in(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
  }
  void write(std::vector<unsigned char> const &bytes) const {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<char const *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  /// Keeps the first `size` bytes.
  void cut(std::size_t size) const { std::filesystem::resize_file(path, size); }
  /// Inverts every bit of byte `at`.
  void flip(std::size_t at) const {
    std::vector<unsigned char> all = bytes();
    all.at(at) ^= 0xFF;
    write(all);
  }
};

}  // namespace quarn::test

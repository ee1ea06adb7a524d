// DataRows.h - reference tables kept as tab-separated text files beside the tests
//
// QUARN_TEST_DATA_DIR is the tests folder; names are relative to it. Lines
// starting with '#' and blank lines are skipped. A missing file or a row with
// the wrong number of fields throws, so a broken table never passes as empty.
#pragma once

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace quarn::test {

inline std::vector<std::vector<std::string>> readRows(std::string const &name, std::size_t fields) {
  std::string const path = std::string(QUARN_TEST_DATA_DIR) + "/" + name;
  std::ifstream in(path);
  if (!in) throw std::runtime_error("cannot open " + path);
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> row;
    std::istringstream cells(line);
    for (std::string cell; std::getline(cells, cell, '\t');) row.push_back(cell);
    if (row.size() != fields) throw std::runtime_error(path + ": bad row: " + line);
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace quarn::test

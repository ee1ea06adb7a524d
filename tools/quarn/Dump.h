// Dump.h - `quarn dump`: a record file or a bare value stream as text a person reads
//
//   quarn dump FILE [--raw]
//
// A record file is printed record by record: its number, offset and length,
// its class, and for a value array each element's class and text (nested
// arrays indented; typed arrays and bitsets shortened, with their count).
// A file without the record file magic number is read as bare value arrays
// one after another (stream version 2), as hosts wrote them before record
// files. --raw creates nothing: it shows the framing (lengths, checksums,
// class names, element counts) and the other bytes in hex, so a file whose
// classes are not at hand can still be looked into.
//
// Damage is reported on `err` as "quarn dump: FILE: <what the reader said>"
// (with the record number and offset), and dumping goes on with the next
// intact record. Exit status: 0 all read, 1 damage or a file that cannot be
// read, 2 a command line that could not be understood.
#pragma once

#include <iosfwd>

#include "Commands.h"

namespace quarn::tool {

/// The command `quarn dump`, a row of the tool's command table.
int dump(Arguments const &args, std::ostream &out, std::ostream &err);
/// Its help text.
extern char const kDumpHelp[];

}  // namespace quarn::tool

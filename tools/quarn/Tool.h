// Tool.h - the commands of the quarn command-line tool
//
//   quarn register CLASS LIBRARY [--description TEXT] [--proxy] [--no-check]
//   quarn register LIBRARY --all
//   quarn unregister CLASS
//   quarn which CLASS
//   quarn classes
//   quarn inspect LIBRARY
//   quarn check
//   quarn dump FILE [--raw]          (Dump.h)
//   quarn --version | --help | help COMMAND | COMMAND --help
//
// The registration files live in the "classes" folder beside the libquarn the
// tool runs with, or in the folders of QUARN_CLASSES_PATH. Libraries are
// loaded only in a child process (LibraryProbe.h). Results go to `out`; each
// error is one line on `err` ("quarn <command>: <what went wrong>"). Exit
// status: 0 success, 1 failure (including "not registered" and any problem
// check finds), 2 a command line that could not be understood.
#pragma once

#include <iosfwd>

namespace quarn::tool {

/// Runs the command line `argv` (argv[0] is the program's name).
int run(int argc, char **argv, std::ostream &out, std::ostream &err);

}  // namespace quarn::tool

// What a connection string may ask for, judged by where it comes from.
//
// A driver is a library that reads keys of its own: some load other libraries, run statements or read and write files.
// A string that came with a file was not written by whoever opens the file, so it may hold only keys that are known to
// do nothing of the kind. What is judged is every way in which some driver may read the text, not only our own.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

/// Who wrote a connection string.
enum class ConnectionOrigin : std::uint8_t {
  File,    ///< it was saved in a query file
  Person,  ///< somebody has typed or chosen it
  Program  ///< the application gives it
};

enum class ConnectionVerdict : std::uint8_t {
  Open,   ///< nothing speaks against it
  Warn,   ///< only when the person has read the reason and wants it all the same
  Refuse  ///< never from there
};

struct ConnectionJudgement {
  ConnectionVerdict verdict = ConnectionVerdict::Open;
  Phrase reason;  ///< a sentence for a person, without values; nothing for `Open`
};

/// Judges the string. `drivers` are the names of the drivers that are configured on the machine.
///
/// From a program everything is opened. From a file and from a person `Driver=` has to be one of `drivers`, in any
/// letter case, and never a path. Keys that run statements, load libraries or use other files are refused from a file
/// and warned of to a person. A file's string for a driver is refused, too, when it holds a key that nobody knows to
/// be harmless, a key twice, or beside a configured data source one that leads its password to another server. A
/// configured data source itself (`DSN=`) is the person's own, whatever it is configured to do.
ZRQRYBLD_API ConnectionJudgement JudgeConnection(std::string_view connectionString, ConnectionOrigin origin,
                                                 std::span<const std::string> drivers);

}  // namespace zrqrybld

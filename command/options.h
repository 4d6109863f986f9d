// What the command was asked to do.
#pragma once

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

enum class Verb : std::uint8_t { Help, Version, Tables, Translate, Show, Picture, Check };

struct CommandOptions {
  Verb verb = Verb::Help;
  std::string connectionString;  ///< of --db or --connect; "" for none
  SQLSyntaxEnum from = SQLSyntaxGeneric;
  SQLSyntaxEnum to = SQLSyntaxGeneric;
  std::string output;  ///< of -o; "" for the standard output
  bool json = false;
  std::vector<std::string> files;  ///< "-" is the standard input
};

/// The command line makes no sense; the text says why.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the command line, without the program's name. UsageError when it makes no sense.
CommandOptions ReadOptions(std::span<const std::string> arguments);

/// What --help prints.
std::string HelpText();

}  // namespace zrqrybld

// ConnectionString: the `Key=Value;...` text that names a data source, taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// Keys are compared without regard to case. A value may stand in double or single quotes or in
/// braces, and then holds anything; the closing character doubled stands for itself. An opening one
/// that is never closed is ordinary text.
class ZRQRYBLD_API ConnectionString {
 public:
  ConnectionString() = default;
  /// Reads any text; parts without "=" are kept as keys without value.
  explicit ConnectionString(std::string_view text);

  /// The value of the first part with this key; none when there is no such part.
  std::optional<std::string> Get(std::string_view key) const;

  /// The parts in their order, values without quotes.
  const std::vector<std::pair<std::string, std::string>>& Parts() const { return parts_; }

  /// The text without its secrets (see `IsSecretKey`), for logs and messages.
  /// Also those of a connection string that stands inside a value.
  std::string WithoutPassword() const;

  /// The text with "***" in the place of each secret, to be looked at.
  std::string Masked() const;

  /// Whether the text holds a secret, also in a connection string inside a value.
  bool HoldsSecret() const;

  /// Whether the key names a password: `PWD`, `Password` and every key that ends so.
  static bool IsPasswordKey(std::string_view key);

  /// Whether the key names a password or another secret: `Token`, `Access Key`, `Secret`, `JWT`, `ApiKey` and every
  /// key that holds such a word, whatever blanks and lines are in it.
  static bool IsSecretKey(std::string_view key);

  /// The value as it is written in a connection string: in quotes when it needs them.
  static std::string QuoteValue(std::string_view value);

 private:
  /// The text down to so many layers with `mask` for each secret, without those parts when it is "", and whether there
  /// were any.
  std::pair<std::string, bool> Hiding(std::string_view mask, int layers) const;

  std::vector<std::pair<std::string, std::string>> parts_;
};

}  // namespace zrqrybld

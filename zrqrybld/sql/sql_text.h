// SqlText and Identifier: text that may stand in a statement as it is, and names that may not.
//
// A name becomes SQL text only through the quoting rules (names.h), so that a forgotten quote does
// not compile.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace zrqrybld {

/// The bare name of a table, column or alias, without any quotes.
class Identifier {
 public:
  Identifier() = default;
  explicit Identifier(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const { return name_; }
  bool Empty() const { return name_.empty(); }
  friend bool operator==(const Identifier&, const Identifier&) = default;

 private:
  std::string name_;
};

/// A piece of a statement.
class SqlText {
 public:
  SqlText() = default;
  /// A literal in our own source is SQL by intention.
  template <std::size_t N>
  SqlText(const char (&literal)[N]) : text_(literal, N - 1) {}

  /// Text that is SQL already: an expression that somebody typed, a number, a marker.
  static SqlText Raw(std::string_view text) {
    SqlText sql;
    sql.text_ = text;
    return sql;
  }

  SqlText& operator+=(const SqlText& other) {
    text_ += other.text_;
    return *this;
  }
  template <std::size_t N>
  SqlText& operator+=(const char (&literal)[N]) {
    text_.append(literal, N - 1);
    return *this;
  }
  friend SqlText operator+(SqlText a, const SqlText& b) {
    a += b;
    return a;
  }

  bool Empty() const { return text_.empty(); }
  const std::string& Text() const { return text_; }
  std::string Take() && { return std::move(text_); }

 private:
  std::string text_;
};

}  // namespace zrqrybld

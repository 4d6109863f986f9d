// Numbered errors: the only exceptions that leave the library.
//
// An error is a number, a phrase for a person and, where text was read, the place in that text. A failure that has a
// cause keeps the cause's number and words. The description is the phrase in English, for programs and logs; whoever
// shows the error to a person renders it in that person's language.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

/// The library's own error numbers.
enum QueryBuilderErrorEnum : std::int32_t {
  ErrorInvalidResFile = 40000,        ///< a language file cannot be read
  ErrorInvalidCellReference = 40001,  ///< a grid cell that does not exist
  ErrorParsingText = 40002,           ///< SQL or criteria text cannot be read
  ErrorLoadingQuery = 40003,          ///< a query file cannot be loaded
  ErrorAddingTable = 40004,           ///< a table cannot be added to the diagram
  ErrorInvalidPropertyValue = 40005,  ///< a property refuses the value
};

/// Numbers that the library shares with the data access layers it talks to.
enum CommonErrorEnum : std::int32_t {
  ErrorInvalidCall = 5,            ///< the call makes no sense now
  ErrorTypeMismatch = 13,          ///< a value cannot be read as the type asked for
  ErrorNoSuchItem = 9,             ///< no such position or key
  ErrorFileAccess = 75,            ///< a file cannot be read or written
  ErrorObjectRemoved = 91,         ///< the object was removed from its collection
  ErrorDuplicateKey = 457,         ///< the key is already in use
  ErrorConnectionFailed = 3706,    ///< no provider, or the provider cannot open the source
  ErrorConnectionClosed = 3704,    ///< the operation needs an open connection
  ErrorConnectionOpen = 3705,      ///< the operation needs a closed connection
  ErrorSchemaNotSupported = 3251,  ///< the provider has no such schema
};

class Error;

/// An error with `number` that wraps `cause`: `sentence`, CR LF, "[", its number, "] ", its own phrase. A standard
/// exception counts as number 0.
ZRQRYBLD_API Error WrapError(std::int32_t number, const Phrase& sentence, const std::exception& cause);

/// A numbered error with a description.
class ZRQRYBLD_API Error : public std::exception {
 public:
  Error(std::int32_t number, Phrase phrase, std::optional<std::size_t> offset = std::nullopt)
      : number_(number), phrase_(std::move(phrase)), description_(phrase_.English()), offset_(offset) {}

  /// The error's number: a `QueryBuilderErrorEnum`, a `CommonErrorEnum` or a provider's own.
  std::int32_t Number() const { return number_; }

  /// What to say to a person, in any language.
  const Phrase& What() const { return phrase_; }
  /// The same in English, in UTF-8.
  const std::string& Description() const { return description_; }

  /// Where in the text that was read the failure lies, in bytes from 0; none when no text was read.
  std::optional<std::size_t> Offset() const { return offset_; }

  /// What the failure that this error wraps says; the phrase itself when it wraps none.
  const Phrase& Cause() const { return cause_ ? *cause_ : phrase_; }

  const char* what() const noexcept override { return description_.c_str(); }

 private:
  friend Error WrapError(std::int32_t number, const Phrase& sentence, const std::exception& cause);

  std::int32_t number_;
  Phrase phrase_;
  std::string description_;
  std::optional<Phrase> cause_;
  std::optional<std::size_t> offset_;
};

/// What to say of any failure: an error's phrase, the words of another exception.
ZRQRYBLD_API Phrase PhraseOf(const std::exception& failure);

[[noreturn]] ZRQRYBLD_API void ThrowDuplicateKey(std::string_view key);
[[noreturn]] ZRQRYBLD_API void ThrowNoSuchItem();
[[noreturn]] ZRQRYBLD_API void ThrowObjectRemoved();

}  // namespace zrqrybld

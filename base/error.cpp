#include "base/error.h"

namespace zrqrybld {

std::string WrapDescription(std::string_view sentence, std::int32_t number, std::string_view description) {
  std::string text(sentence);
  text += "\r\n[";
  text += std::to_string(number);
  text += "] ";
  text += description;
  return text;
}

Error WrapError(std::int32_t number, std::string_view sentence, const std::exception& cause) {
  const auto* error = dynamic_cast<const Error*>(&cause);
  const std::string words = error ? error->Description() : std::string(cause.what());
  Error wrapped(number, WrapDescription(sentence, error ? error->Number() : 0, words),
                error ? error->Offset() : std::nullopt);
  wrapped.cause_ = words;
  return wrapped;
}

void ThrowDuplicateKey(std::string_view key) {
  throw Error(ErrorDuplicateKey, "The key \"" + std::string(key) + "\" is already in use.");
}

void ThrowNoSuchItem() { throw Error(ErrorNoSuchItem, "There is no item at this position or key."); }

void ThrowObjectRemoved() { throw Error(ErrorObjectRemoved, "The object has been removed from its collection."); }

}  // namespace zrqrybld

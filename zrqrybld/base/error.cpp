#include "zrqrybld/base/error.h"

#include "zrqrybld/base/texts_base.h"

namespace zrqrybld {

Phrase PhraseOf(const std::exception& failure) {
  if (const auto* error = dynamic_cast<const Error*>(&failure)) return error->What();
  return failure.what();
}

Error WrapError(std::int32_t number, const Phrase& sentence, const std::exception& cause) {
  const auto* error = dynamic_cast<const Error*>(&cause);
  Error wrapped(number, Phrase(text::WithCause, sentence, "\r\n", error ? error->Number() : 0, PhraseOf(cause)),
                error ? error->Offset() : std::nullopt);
  wrapped.cause_ = PhraseOf(cause);
  return wrapped;
}

void ThrowDuplicateKey(std::string_view key) { throw Error(ErrorDuplicateKey, Phrase(text::KeyInUse, key)); }

void ThrowNoSuchItem() { throw Error(ErrorNoSuchItem, text::NoSuchItem); }

void ThrowObjectRemoved() { throw Error(ErrorObjectRemoved, text::ObjectRemoved); }

}  // namespace zrqrybld

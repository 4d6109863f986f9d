// Texts of the language table as Qt shows them.
#pragma once

#include <QString>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {

inline Phrase ToPhrase(const QString& words) { return ToUtf8(words); }
template <class T>
Phrase ToPhrase(const T& words) {
  return words;
}

/// The text in a language; the arguments stand for its placeholders.
template <class... Arguments>
QString Say(const TextSource& texts, TextId id, const Arguments&... arguments) {
  return ToQString(Phrase(id, ToPhrase(arguments)...).In(texts));
}

/// What a failure says, in a language.
inline QString Say(const TextSource& texts, const std::exception& failure) {
  return ToQString(PhraseOf(failure).In(texts));
}

/// The choice of a window that opens files: those of a kind, and all.
inline QString FileKinds(const TextSource& texts, TextId kind, const char* patterns) {
  return Say(texts, kind) + " (" + patterns + ");;" + Say(texts, text::AllFiles) + " (*)";
}

}  // namespace zrqrybld

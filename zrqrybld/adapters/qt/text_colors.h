// How the pieces of a text look, put into the lines of a document.
#pragma once

#include <QTextDocument>
#include <vector>

#include "zrqrybld/adapters/qt/text_places.h"
#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {

/// Colours the document: its pieces in any order, where two overlap the later one wins. Lines that look as they did in
/// these colours are not touched.
void ColorText(QTextDocument& document, std::vector<TextSpan> spans, const Theme& theme);

/// Forgets how lines look, because the theme has other colours now.
void ForgetColors(QTextDocument& document);

}  // namespace zrqrybld

// KeyList: the window that tells what the keys do, by pane.
#pragma once

#include <QDialog>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

/// The keys of all panes as tables in Markdown.
QString KeyTables(const TextSource& texts);

class KeyList : public QDialog {
  Q_OBJECT

 public:
  explicit KeyList(const TextSource& texts, QWidget* parent = nullptr);
};

}  // namespace zrqrybld

// Mark: a small sign in front of a message, told apart by its shape and not by its colour alone.
#pragma once

#include <QWidget>
#include <cstdint>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

class ZRQRYBLD_API Mark : public QWidget {
  Q_OBJECT

 public:
  enum class Kind : std::uint8_t { None, Success, Warning, Error };

  explicit Mark(QWidget* parent = nullptr);

  /// What the mark shows.
  Kind Shown() const { return kind_; }
  void Show(Kind kind);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Kind kind_ = Kind::None;
};

}  // namespace zrqrybld

// WindowPage: the page of the expression builder that puts a function over the rows around each row together: of what,
// anew for each, in which order, and which rows count.
#pragma once

#include <QStringListModel>
#include <QWidget>
#include <optional>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/expression/expression_builder.h"

class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QToolButton;

namespace zrqrybld {

/// Expressions below one another, each to be typed or chosen; there is always an empty one more at the end.
class ExpressionRows : public QWidget {
  Q_OBJECT

 public:
  /// `directions` are the choices beside each expression, none without them. The columns and the language must outlive
  /// the rows.
  ExpressionRows(QStringListModel& columns, const QStringList& directions, const TextSource& texts);

  struct Entry {
    std::string expression;
    int direction = 0;  // an index of the directions
  };
  /// Shows these, and tells nobody.
  void Show(const std::vector<Entry>& entries);
  /// Those that are not empty.
  std::vector<Entry> Entries() const;
  /// Greys a direction that cannot be had.
  void Forbid(int direction);
  /// The widget to type the first expression.
  QWidget* First() const;

 signals:
  void Changed();

 private:
  struct Row {
    QComboBox* expression;
    QComboBox* direction;  // nullptr without directions
    QToolButton* remove;
  };

  void Append(const Entry& entry);
  void Remove(std::size_t row);
  void Taken();
  void Renumber();

  QStringListModel& columns_;
  const QStringList directions_;
  const TextSource& texts_;
  std::vector<int> forbidden_;
  QGridLayout* grid_ = nullptr;
  std::vector<Row> rows_;
};

class WindowPage : public QWidget {
  Q_OBJECT

 public:
  /// The language must outlive the page.
  WindowPage(const Ref<frmExpressionBuilder>& builder, const TextSource& texts);

  /// Shows a call, or that there is none; tells nobody.
  void Show(const std::optional<WindowCall>& call);
  /// What is shown. Of a page that shows none: the function that has been chosen, and nothing else.
  const WindowCall& Call() const { return call_; }
  /// The function that is chosen, by its place among those of the builder.
  std::size_t Function() const;

 signals:
  /// A function was chosen while no call was shown.
  void Wanted();
  /// The call that is shown was changed.
  void Changed();

 private:
  struct Bound {
    QComboBox* edge;
    QLineEdit* distance;
  };

  QWidget* MakeFunction();
  QWidget* MakeLists();
  QWidget* MakeFrame();
  Bound MakeBound(TextId name);
  void ChooseFunction(int index);
  void Read();
  void ShowProblem();
  static void ShowBound(const Bound& shown, const FrameBound& bound);
  static FrameBound ReadBound(const Bound& shown);

  Ref<frmExpressionBuilder> builder_;
  const TextSource& texts_;
  QStringListModel columns_;
  WindowCall call_;
  bool showsCall_ = false;
  bool filling_ = false;  // the page shows what it was given
  QComboBox* function_ = nullptr;
  QComboBox* arguments_ = nullptr;
  ExpressionRows* partitions_ = nullptr;
  ExpressionRows* orders_ = nullptr;
  QComboBox* unit_ = nullptr;
  Bound from_{};
  Bound to_{};
  QLabel* message_ = nullptr;
  std::vector<QWidget*> parts_;  // what can be used only while a call is shown
};

}  // namespace zrqrybld

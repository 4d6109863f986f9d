// QueryOptionsBar: the part of the tool bar that holds what concerns the query as a whole: its dialect, how many rows,
// and whether rows that are alike count once.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QToolBar>
#include <functional>
#include <optional>
#include <span>

#include "designer/command_actions.h"
namespace zrqrybld {

class qbQueryBuilder;

class QueryOptionsBar : public QToolBar {
  Q_OBJECT

 public:
  /// The hub must live until another one is followed.
  explicit QueryOptionsBar(qbQueryBuilder& hub, QWidget* parent = nullptr);

  /// Shows and changes the query of another hub from now on.
  void Follow(qbQueryBuilder& hub);

  /// Adds the buttons of these commands in front of what is there; nothing is a line between groups.
  void AddCommands(const CommandActions& commands, std::span<const std::optional<Command>> wanted);

  /// Shows what the hub holds; a field that is being typed in keeps its text.
  void Refresh();
  /// Whether the text is a limit: a number, a percentage, or nothing for all rows.
  static bool IsLimit(const QString& text);
  /// Chooses a dialect that exists, as the user would.
  void ChooseDialect(const QString& name);

 Q_SIGNALS:
  /// The user has chosen a dialect.
  void DialectChosen();
  /// What was chosen cannot be had.
  void Failed(const QString& message);

 private:
  void Change(const std::function<void()>& change);
  void TakeLimit();

  qbQueryBuilder* hub_;
  QComboBox* dialect_;
  QLineEdit* limit_;
  QSpinBox* skip_;
  QAction* skipShown_;
  QCheckBox* distinct_;
};

}  // namespace zrqrybld

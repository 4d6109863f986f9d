#include "zrqrybld/adapters/qt/expression_window.h"

#include <QApplication>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/predictive_text.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/adapters/qt/window_page.h"
#include "zrqrybld/base/texts_expression.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/sql/highlighting.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr int kGroupRole = Qt::UserRole;
constexpr int kPartRole = Qt::UserRole + 1;
constexpr int kInsertRole = Qt::UserRole + 2;
constexpr QLatin1String kPieceFormat("application/x-zrqrybld-piece");

}  // namespace

// Other programs get the text; the window's own editor inserts the chosen piece, which the dragged one is.
QMimeData* PartsTree::mimeData(const QList<QTreeWidgetItem*>& items) const {
  auto* dragged = new QMimeData;
  if (items.isEmpty()) return dragged;
  dragged->setText(ToQString(ReadTemplate(ToUtf8(items.front()->data(0, kInsertRole).toString())).text));
  dragged->setData(kPieceFormat, {});
  return dragged;
}

ExpressionWindow::ExpressionWindow(const ExpressionDialog& dialog, QWidget* parent, const TextSource& texts)
    : QDialog(parent),
      texts_(texts),
      form_(dialog.form),
      builder_(std::dynamic_pointer_cast<frmExpressionBuilder>(dialog.form)) {
  setWindowTitle(ToQString(dialog.caption));
  auto* accept = new QPushButton(ToQString(form_->AcceptButton()));
  auto* cancel = new QPushButton(ToQString(form_->CancelButton()));
  accept->setDefault(true);
  connect(accept, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(accept);
  buttons->addWidget(cancel);

  auto* layout = new QVBoxLayout(this);
  const int em = fontMetrics().averageCharWidth();
  const int line = fontMetrics().height();
  if (builder_) {
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(MakeEditor(dialog));
    splitter->addWidget(MakePages());
    TellInOrder(*splitter);
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    splitter->setChildrenCollapsible(false);
    layout->addWidget(splitter, 1);
    resize(em * 108, line * 34);
  } else {
    layout->addWidget(MakeEditor(dialog), 1);
    resize(em * 76, line * 14);
  }
  layout->addLayout(buttons);
  ApplyColors();
  Check();
  editor_->setFocus();
}

// --- The editor ---

QWidget* ExpressionWindow::MakeEditor(const ExpressionDialog& dialog) {
  auto* panel = new QWidget;
  editor_ = new QtTextArea;
  editor_->setFrameShape(QFrame::StyledPanel);
  editor_->SetLineNumbers(false);
  editor_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  editor_->setAccessibleName(ToQString(dialog.caption));
  editor_->installEventFilter(this);
  editor_->viewport()->installEventFilter(this);
  editor_->SetText(dialog.text);
  editor_->moveCursor(QTextCursor::End);
  // What cannot be read is marked on top of the words' colours.
  editor_->SetHighlighter([this](std::string_view text) {
    return HighlightWithFault(text, fault_ ? std::optional(fault_->offset) : std::nullopt);
  });
  predictive_ = new PredictiveText(*editor_, form_->Suggestions());  // keys reach it before this window's filter
  links_.push_back(editor_->Edited.Connect([this] { Check(); }));
  message_ = new QLabel;
  message_->setObjectName(QStringLiteral("message"));
  message_->setWordWrap(true);
  message_->setTextFormat(Qt::PlainText);
  message_->setMinimumHeight(message_->fontMetrics().height());

  auto* below = new QHBoxLayout;
  below->addWidget(message_, 1);
  if (builder_) below->addWidget(MakeTools(), 0, Qt::AlignTop);
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins({});
  layout->addWidget(editor_, 1);
  layout->addLayout(below);
  return panel;
}

QWidget* ExpressionWindow::MakeTools() {
  auto* panel = new QWidget;
  insert_ = new QToolButton;
  insert_->setText(Say(texts_, text::InsertButton));
  insert_->setIcon(style()->standardIcon(QStyle::SP_ArrowUp));
  insert_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  insert_->setToolTip(PlainTip(ToQString(builder_->InsertToolTip())));
  auto* clear = new QToolButton;
  clear->setText(Say(texts_, text::ClearButton));
  clear->setIcon(style()->standardIcon(QStyle::SP_LineEditClearButton));
  clear->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  clear->setToolTip(PlainTip(ToQString(builder_->ClearToolTip())));
  connect(insert_, &QToolButton::clicked, this, &ExpressionWindow::Insert);
  connect(clear, &QToolButton::clicked, this, [this] {
    QTextCursor all(editor_->document());  // one step that can be undone
    all.select(QTextCursor::Document);
    all.removeSelectedText();
    editor_->setFocus();
  });
  auto* layout = new QHBoxLayout(panel);
  layout->setContentsMargins({});
  layout->addWidget(insert_);
  layout->addWidget(clear);
  return panel;
}

std::string ExpressionWindow::Text() const { return frmExpressionZoom::OnOneLine(editor_->Text()); }

void ExpressionWindow::Check() {
  const std::string text = editor_->Text();
  boundary_.Run([&] { fault_ = form_->Check(text); });
  message_->setText(fault_ ? ToQString(fault_->message) : QString());
  editor_->Rehighlight();
}

void ExpressionWindow::ApplyColors() {
  QPalette colors = palette();
  colors.setColor(QPalette::WindowText, Theme::ForWindow(palette()).Of(ColorRole::Error));
  message_->setPalette(colors);
  if (!parts_) return;
  const QBrush quiet = Theme(palette()).Of(ColorRole::QuietText);
  for (int g = 0; g < parts_->topLevelItemCount(); ++g) {
    QTreeWidgetItem& group = *parts_->topLevelItem(g);
    for (int p = 0; p < group.childCount(); ++p) group.child(p)->setForeground(1, quiet);
  }
}

void ExpressionWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && message_) ApplyColors();
}

// A piece that is dropped is inserted where it falls, as the button inserts it at the caret.
bool ExpressionWindow::DropPiece(const QDropEvent& drop) {
  if (!drop.mimeData()->hasFormat(kPieceFormat)) return false;
  QDragLeaveEvent leave;  // the text area takes its mark of the place away
  QApplication::sendEvent(editor_->viewport(), &leave);
  editor_->setTextCursor(editor_->cursorForPosition(drop.position().toPoint()));
  Insert();
  return true;
}

// Ctrl+Enter accepts, as Enter writes a line end.
bool ExpressionWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Drop && watched == editor_->viewport()) {
    auto& drop = static_cast<QDropEvent&>(*event);
    if (DropPiece(drop)) {
      drop.acceptProposedAction();
      return true;
    }
  }
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (watched == editor_ && isEnter && key.modifiers().testFlag(Qt::ControlModifier)) {
      accept();
      return true;
    }
    if (watched == parts_ && isEnter) {
      Insert();
      return true;
    }
    if (watched == search_ && (isEnter || key.key() == Qt::Key_Down)) {
      if (!isEnter) parts_->setFocus();
      if (isEnter) Insert();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

// --- The pages ---

QWidget* ExpressionWindow::MakePages() {
  QWidget* parts = MakeParts();
  if (!builder_->OffersWindows()) return parts;
  pages_ = new QTabWidget;
  const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
  parts->setContentsMargins(margin, margin, margin, margin);
  pages_->addTab(parts, Say(texts_, text::PiecesPage));
  window_ = new WindowPage(builder_, texts_);
  const int page = pages_->addTab(window_, Say(texts_, text::WindowPage));
  const std::string problem = builder_->WhyNoWindows();
  pages_->setTabEnabled(page, problem.empty());
  if (!problem.empty()) pages_->setTabToolTip(page, PlainTip(ToQString(problem)));
  TellInOrder(*pages_);
  connect(pages_, &QTabWidget::currentChanged, this,
          [this] { insert_->setEnabled(pages_->currentWidget() != window_); });  // the other page writes by itself
  connect(window_, &WindowPage::Wanted, this, &ExpressionWindow::StartWindowCall);
  connect(window_, &WindowPage::Changed, this, [this] {
    if (windowCall_) WriteWindowCall(*windowCall_, window_->Call());
  });
  connect(editor_, &QPlainTextEdit::cursorPositionChanged, this, &ExpressionWindow::FollowCaret);
  connect(editor_, &QPlainTextEdit::textChanged, this, &ExpressionWindow::FollowCaret);
  // An expression that has such a function is opened on it.
  const std::optional<WindowCallPlace> first = problem.empty() ? FirstWindowCall(editor_->Text()) : std::nullopt;
  if (first) {
    pages_->setCurrentWidget(window_);
    predictive_->Write({first->offset + first->length, first->offset + first->length, {}});
  }
  FollowCaret();
  return pages_;
}

// The page shows the function that the caret stands in.
void ExpressionWindow::FollowCaret() {
  if (writing_) return;
  const std::optional<WindowCallPlace> found = FindWindowCall(editor_->Text(), predictive_->Selection().start);
  windowCall_ = found ? std::optional(TextRange{found->offset, found->length}) : std::nullopt;
  window_->Show(found ? std::optional(found->call) : std::nullopt);
}

// Of what is selected, otherwise of the whole expression; of neither when it cannot be read, so that nothing is lost.
void ExpressionWindow::StartWindowCall() {
  const std::string text = editor_->Text();
  TextRange place = predictive_->Selection();
  if (place.length == 0) {
    if (!builder_->Check(text)) place = {0, text.size()};
  } else if (builder_->Check(text.substr(place.start, place.length))) {
    place = {place.start + place.length, 0};
  }
  const WindowCall call = builder_->NewWindowCall(window_->Function(), text.substr(place.start, place.length));
  window_->Show(call);
  WriteWindowCall(place, call);
}

void ExpressionWindow::WriteWindowCall(TextRange place, const WindowCall& call) {
  writing_ = true;
  const std::string written = zrqrybld::WriteWindowCall(call);
  predictive_->Write({place.start, place.start + place.length, {written, {}}});
  windowCall_ = TextRange{place.start, written.size()};
  writing_ = false;
}

// --- The pieces ---

QWidget* ExpressionWindow::MakeParts() {
  auto* left = new QWidget;
  search_ = new QLineEdit;
  search_->setObjectName(QStringLiteral("search"));
  search_->setPlaceholderText(Say(texts_, text::SearchPieces));
  search_->setAccessibleName(search_->placeholderText());
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  parts_ = new PartsTree;
  parts_->setHeaderHidden(true);
  parts_->setColumnCount(2);
  parts_->setDragEnabled(true);
  parts_->setUniformRowHeights(true);
  parts_->setAccessibleName(Say(texts_, text::Pieces));
  parts_->installEventFilter(this);
  FillTree();
  auto* layout = new QVBoxLayout(left);
  layout->setContentsMargins({});
  layout->addWidget(search_);
  layout->addWidget(parts_, 1);
  connect(search_, &QLineEdit::textChanged, this, &ExpressionWindow::Search);
  connect(parts_, &QTreeWidget::currentItemChanged, this, &ExpressionWindow::ShowChosen);
  connect(parts_, &QTreeWidget::itemDoubleClicked, this, [this](const QTreeWidgetItem* item) {
    if (item->parent()) Insert();
  });

  auto* splitter = new QSplitter(Qt::Horizontal);
  splitter->addWidget(left);
  splitter->addWidget(MakeParameters());
  TellInOrder(*splitter);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  splitter->setChildrenCollapsible(false);
  ShowChosen();
  return splitter;
}

QWidget* ExpressionWindow::MakeParameters() {
  auto* panel = new QWidget;
  hint_ = new QLabel;
  hint_->setWordWrap(true);
  hint_->setTextFormat(Qt::PlainText);
  hint_->setMinimumHeight(search_->sizeHint().height());  // the table begins level with the tree
  parameters_ = new QTableWidget(0, 2);
  parameters_->setHorizontalHeaderLabels(
      {ToQString(builder_->ParameterNameHeader()), ToQString(builder_->ParameterValueHeader())});
  parameters_->horizontalHeader()->setStretchLastSection(true);
  parameters_->horizontalHeader()->setHighlightSections(false);
  parameters_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  parameters_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  parameters_->verticalHeader()->hide();
  parameters_->setAccessibleName(ToQString(builder_->ParameterNameHeader()));
  connect(parameters_, &QTableWidget::cellChanged, this, [this](int row, int column) {
    if (column != 1) return;
    const std::string value = ToUtf8(parameters_->item(row, column)->text());
    boundary_.Run([&] { builder_->SetParameter(static_cast<std::size_t>(row), value); });
  });
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins({});
  layout->addWidget(hint_);
  layout->addWidget(parameters_, 1);
  return panel;
}

void ExpressionWindow::FillTree() {
  const std::vector<frmExpressionBuilder::Group>& groups = builder_->Groups();
  QList<QTreeWidgetItem*> items;
  for (std::size_t g = 0; g < groups.size(); ++g) {
    auto* group = new QTreeWidgetItem({ToQString(groups[g].name)});
    group->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    for (std::size_t p = 0; p < groups[g].parts.size(); ++p) {
      const frmExpressionBuilder::Part& part = groups[g].parts[p];
      auto* item = new QTreeWidgetItem(group, {ToQString(part.text), ToQString(part.hint)});
      item->setData(0, kGroupRole, static_cast<qulonglong>(g));
      item->setData(0, kPartRole, static_cast<qulonglong>(p));
      item->setData(0, kInsertRole, ToQString(part.insert));
    }
    items.push_back(group);
  }
  parts_->addTopLevelItems(items);
  if (!items.isEmpty()) items.front()->setExpanded(true);
  parts_->setColumnWidth(0, fontMetrics().averageCharWidth() * 30);
}

// A group is shown, and opened, while one of its pieces is found; the first one found is chosen.
void ExpressionWindow::Search(const QString& wanted) {
  const std::string text = ToUtf8(wanted.trimmed());
  const std::vector<frmExpressionBuilder::Group>& groups = builder_->Groups();
  QTreeWidgetItem* first = nullptr;
  for (int g = 0; g < parts_->topLevelItemCount(); ++g) {
    QTreeWidgetItem* group = parts_->topLevelItem(g);
    const frmExpressionBuilder::Group& source = groups[static_cast<std::size_t>(g)];
    bool any = false;
    for (int p = 0; p < group->childCount(); ++p) {
      const bool found = frmExpressionBuilder::Finds(text, source, source.parts[static_cast<std::size_t>(p)]);
      group->child(p)->setHidden(!found);
      if (found && !first) first = group->child(p);
      any = any || found;
    }
    group->setHidden(!any);
    group->setExpanded(any && (!text.empty() || g == 0));
  }
  parts_->setCurrentItem(text.empty() ? nullptr : first);
}

void ExpressionWindow::ShowChosen() {
  const QTreeWidgetItem* item = parts_->currentItem();
  const bool isPart = item && item->parent();
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  builder_->Choose(isPart ? item->data(0, kGroupRole).toULongLong() : kNone,
                   isPart ? item->data(0, kPartRole).toULongLong() : kNone);
  hint_->setText(isPart ? item->data(0, kInsertRole).toString() : Say(texts_, text::ChoosePiece));
  const QSignalBlocker quiet(parameters_);
  parameters_->setRowCount(0);
  for (const frmExpressionBuilder::Parameter& parameter : builder_->Parameters()) {
    const int row = parameters_->rowCount();
    parameters_->insertRow(row);
    auto* name = new QTableWidgetItem(ToQString(parameter.name));
    name->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    parameters_->setItem(row, 0, name);
    parameters_->setItem(row, 1, new QTableWidgetItem);
  }
  parameters_->setFocusPolicy(parameters_->rowCount() > 0 ? Qt::StrongFocus : Qt::NoFocus);
}

// In place of what is selected in the editor.
void ExpressionWindow::Insert() {
  if (!builder_ || !builder_->HasChosen()) return;
  const TextRange selected = predictive_->Selection();
  predictive_->Write(builder_->Insertion(editor_->Text(), selected.start, selected.start + selected.length));
  editor_->setFocus();
}

}  // namespace zrqrybld

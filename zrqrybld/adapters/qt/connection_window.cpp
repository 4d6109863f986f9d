#include "zrqrybld/adapters/qt/connection_window.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/name_list.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

// The ways under the names that the settings keep, in the order of the tabs.
constexpr const char* kWayNames[] = {"file", "dataSource", "text"};
constexpr auto kWayKey = "ConnectionPrompt/way";
constexpr auto kRecentKey = "ConnectionPrompt/recentFiles";

constexpr int kMargin = 12;
constexpr int kSpacing = 8;
constexpr int kStatusLines = 3;

// The hourglass, for as long as it lives.
class WaitPointer {
 public:
  WaitPointer() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  WaitPointer(const WaitPointer&) = delete;
  WaitPointer& operator=(const WaitPointer&) = delete;
  ~WaitPointer() { QGuiApplication::restoreOverrideCursor(); }
};

// --- Recent files ---

QStringList RecentFiles() { return QSettings().value(QLatin1String(kRecentKey)).toStringList(); }

void StoreRecentFiles(const QStringList& files) { QSettings().setValue(QLatin1String(kRecentKey), files); }

// Only a file that is there: anything else typed for one might be a connection string with its password.
void RememberFile(const QString& file) {
  const QFileInfo info(file);
  if (!info.isFile()) return;
  const QString path = QDir::cleanPath(info.absoluteFilePath());
  QStringList files = RecentFiles();
  files.removeAll(path);
  files.prepend(path);
  while (files.size() > ConnectionWindow::kRecentFiles) files.removeLast();
  StoreRecentFiles(files);
}

// A file in two lines: its name, and below it the folder in a quieter tone.
class FileDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return {0, 2 * option.fontMetrics.height() + 2 * kAir};
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const Theme theme(option.palette);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool hover = option.state.testFlag(QStyle::State_MouseOver);
    if (selected || hover) {
      painter->fillRect(option.rect, theme.Of(selected ? ColorRole::RowSelected : ColorRole::RowHover));
    }
    const QFileInfo file(index.data(Qt::UserRole).toString());
    const QRect lines = option.rect.adjusted(kAir * 2, kAir, -kAir * 2, -kAir);
    const auto draw = [&](const QString& text, int line, ColorRole role) {
      const int height = option.fontMetrics.height();
      painter->setPen(theme.Of(role));
      painter->drawText(QRect(lines.left(), lines.top() + line * height, lines.width(), height),
                        Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                        option.fontMetrics.elidedText(text, Qt::ElideMiddle, lines.width()));
    };
    painter->save();
    draw(file.fileName(), 0, ColorRole::Text);
    draw(QDir::toNativeSeparators(file.path()), 1, ColorRole::QuietText);
    if (option.state.testFlag(QStyle::State_HasFocus)) {
      painter->setPen(theme.Of(ColorRole::Focus));
      painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
    painter->restore();
  }

 private:
  static constexpr int kAir = 4;
};

QLabel* LabelFor(QWidget* field, const QString& text) {
  auto* label = new QLabel(text);
  label->setBuddy(field);
  field->setAccessibleName(QString(text).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
  return label;
}

}  // namespace

ConnectionWindow::ConnectionWindow(const ConnectionDialog& dialog, QWidget* parent, const TextSource& texts)
    : QDialog(parent), texts_(texts), dialog_(dialog) {
  setWindowTitle(Say(texts_, text::ConnectCaption));

  tabs_ = new QTabWidget;
  TellInOrder(*tabs_);
  tabs_->addTab(MakeFilePage(), Say(texts_, text::ConnectFileTab));
  tabs_->addTab(MakeDataSourcePage(), Say(texts_, text::ConnectSourceTab));
  tabs_->addTab(MakeTextPage(), Say(texts_, text::ConnectStringTab));
  tabs_->setAccessibleName(Say(texts_, text::ConnectWays));

  test_ = new QPushButton(Say(texts_, text::TestButton));
  test_->setVisible(static_cast<bool>(dialog_.test));
  connect_ = new QPushButton(Say(texts_, text::ConnectButton));
  connect_->setDefault(true);
  auto* cancel = new QPushButton(Say(texts_, text::CancelButton));
  for (QPushButton* button : {test_, cancel}) button->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(test_);
  buttons->addStretch();
  buttons->addWidget(connect_);
  buttons->addWidget(cancel);

  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(kSpacing);
  layout->addWidget(tabs_, 1);
  layout->addWidget(MakeStatus());
  layout->addLayout(buttons);

  const QString way = QSettings().value(QLatin1String(kWayKey)).toString();
  const auto* const found =
      std::ranges::find_if(kWayNames, [&](const char* name) { return way == QLatin1String(name); });
  if (found != std::end(kWayNames)) tabs_->setCurrentIndex(static_cast<int>(found - kWayNames));

  connect(tabs_, &QTabWidget::currentChanged, this, [this] {
    GivenChanged();
    if (!tabs_->tabBar()->hasFocus()) FocusFirstField();
  });
  connect(test_, &QPushButton::clicked, this, &ConnectionWindow::Test);
  connect(connect_, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  ApplyColors();
  GivenChanged();
  resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 26);
}

// --- The pages ---

QWidget* ConnectionWindow::MakeFilePage() {
  file_ = new QLineEdit;
  file_->setPlaceholderText(Say(texts_, text::FilePath));
  auto* browse = new QPushButton(Say(texts_, text::BrowseButton));
  browse->setAutoDefault(false);
  recent_ = new QListWidget;
  recent_->setItemDelegate(new FileDelegate(recent_));
  recent_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  recent_->setMouseTracking(true);
  recent_->installEventFilter(this);
  for (const QString& path : RecentFiles()) {
    auto* item = new QListWidgetItem(QDir::toNativeSeparators(path), recent_);
    item->setData(Qt::UserRole, path);
    item->setToolTip(PlainTip(QDir::toNativeSeparators(path)));
  }

  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(kSpacing);
  auto* line = new QHBoxLayout;
  line->setSpacing(kSpacing);
  line->addWidget(LabelFor(file_, Say(texts_, text::FileLabel)));
  line->addWidget(file_, 1);
  line->addWidget(browse);
  layout->addLayout(line);
  auto* recentLabel = LabelFor(recent_, Say(texts_, text::RecentFilesLabel));
  layout->addWidget(recentLabel);
  layout->addWidget(recent_, 1);
  auto* none = new QLabel(Say(texts_, text::RecentFilesHint));
  none->setAlignment(Qt::AlignLeading | Qt::AlignTop);
  layout->addWidget(none, 1);
  const bool any = recent_->count() > 0;
  recentLabel->setVisible(any);
  recent_->setVisible(any);
  none->setVisible(!any);

  connect(browse, &QPushButton::clicked, this, &ConnectionWindow::Browse);
  connect(file_, &QLineEdit::textChanged, this, &ConnectionWindow::GivenChanged);
  connect(recent_, &QListWidget::currentItemChanged, this, &ConnectionWindow::ChooseRecentFile);
  connect(recent_, &QListWidget::itemClicked, this, &ConnectionWindow::ChooseRecentFile);
  connect(recent_, &QListWidget::itemDoubleClicked, this, [this] {
    ChooseRecentFile();
    connect_->click();
  });
  return page;
}

QWidget* ConnectionWindow::MakeDataSourcePage() {
  filter_ = new QLineEdit;
  filter_->setPlaceholderText(Say(texts_, text::FilterByName));
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);
  sources_ = new NameList(Say(texts_, text::NoSourceConfigured), Say(texts_, text::NoNameContains));
  sources_->setSelectionMode(QAbstractItemView::SingleSelection);
  sources_->setAccessibleName(Say(texts_, text::DataSources));
  filtered_ = new QSortFilterProxyModel(sources_);
  filtered_->setFilterCaseSensitivity(Qt::CaseInsensitive);
  filtered_->setSourceModel(new QStringListModel(ToQStringList(dialog_.dataSources), filtered_));
  sources_->setModel(filtered_);
  user_ = new QLineEdit;
  user_->setPlaceholderText(Say(texts_, text::AsSourceSays));
  password_ = new QLineEdit;
  password_->setEchoMode(QLineEdit::Password);
  password_->setPlaceholderText(Say(texts_, text::AsSourceSays));

  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(kSpacing);
  auto* filterLine = new QHBoxLayout;
  filterLine->setSpacing(kSpacing);
  filterLine->addWidget(LabelFor(filter_, Say(texts_, text::FilterLabel)));
  filterLine->addWidget(filter_, 1);
  layout->addLayout(filterLine);
  layout->addWidget(sources_, 1);
  auto* account = new QHBoxLayout;
  account->setSpacing(kSpacing);
  account->addWidget(LabelFor(user_, Say(texts_, text::UserLabel)));
  account->addWidget(user_, 1);
  account->addSpacing(kSpacing);
  account->addWidget(LabelFor(password_, Say(texts_, text::PasswordLabel)));
  account->addWidget(password_, 1);
  layout->addLayout(account);

  // The first match is selected, so that a few letters and Enter connect.
  connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) {
    const QString chosen = sources_->currentIndex().data().toString();
    filtered_->setFilterFixedString(text);
    const QModelIndexList kept = filtered_->match(filtered_->index(0, 0), Qt::DisplayRole, chosen, 1, Qt::MatchExactly);
    sources_->clearSelection();
    if (text.isEmpty() ? !kept.isEmpty() : filtered_->rowCount() > 0) {
      sources_->setCurrentIndex(kept.isEmpty() ? filtered_->index(0, 0) : kept.front());
    }
    GivenChanged();
  });
  connect(sources_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ConnectionWindow::GivenChanged);
  connect(sources_, &QListView::doubleClicked, this, [this] { connect_->click(); });
  for (QLineEdit* field : {user_, password_}) {
    connect(field, &QLineEdit::textChanged, this, &ConnectionWindow::GivenChanged);
  }
  return page;
}

QWidget* ConnectionWindow::MakeTextPage() {
  text_ = new QPlainTextEdit;
  text_->setPlaceholderText(
      Say(texts_, text::StringExample) +
      QStringLiteral("\nDriver={PostgreSQL Unicode};\nServer=localhost;\nDatabase=store;\nUID=...;PWD=..."));
  text_->setTabChangesFocus(true);
  text_->setInputMethodHints(Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
  text_->installEventFilter(this);

  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(kSpacing);
  layout->addWidget(LabelFor(text_, Say(texts_, text::StringLabel)));
  layout->addWidget(text_, 1);
  auto* hint = new QLabel(Say(texts_, text::StringHint));
  hint->setWordWrap(true);
  layout->addWidget(hint);
  connect(text_, &QPlainTextEdit::textChanged, this, &ConnectionWindow::GivenChanged);
  return page;
}

// What a test has shown, in the driver's own words: a long message scrolls, and can be selected and copied.
QWidget* ConnectionWindow::MakeStatus() {
  mark_ = new Mark;
  status_ = new QPlainTextEdit;
  status_->setReadOnly(true);
  status_->setFrameShape(QFrame::NoFrame);
  status_->setTabChangesFocus(true);
  status_->setUndoRedoEnabled(false);
  status_->document()->setDocumentMargin(0);
  status_->setFixedHeight(fontMetrics().lineSpacing() * kStatusLines);
  status_->setAccessibleName(Say(texts_, text::TestResult));
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kSpacing);
  layout->addWidget(mark_, 0, Qt::AlignTop);
  layout->addWidget(status_, 1);
  return line;
}

// --- What is given ---

ConnectionChoice ConnectionWindow::Choice() const {
  const QModelIndexList chosen = sources_->selectionModel()->selectedIndexes();
  std::string dataSource;
  if (!chosen.isEmpty()) {
    dataSource = dialog_.dataSources[static_cast<std::size_t>(filtered_->mapToSource(chosen.front()).row())];
  }
  return {.way = static_cast<ConnectionWay>(std::max(tabs_->currentIndex(), 0)),
          .file = ToUtf8(file_->text()),
          .dataSource = std::move(dataSource),
          .user = ToUtf8(user_->text()),
          .password = ToUtf8(password_->text()),
          .text = ToUtf8(text_->toPlainText())};
}

void ConnectionWindow::Browse() {
  const QString given = file_->text();
  const QString near = !given.isEmpty() ? QFileInfo(given).path() : QFileInfo(RecentFiles().value(0)).path();
  const QString file =
      QFileDialog::getOpenFileName(this, Say(texts_, text::ChooseFile), near,
                                   FileKinds(texts_, text::SqliteDatabases, "*.db *.sqlite *.sqlite3 *.db3"));
  if (!file.isEmpty()) file_->setText(QDir::toNativeSeparators(file));
}

void ConnectionWindow::ChooseRecentFile() {
  if (const QListWidgetItem* item = recent_->currentItem()) file_->setText(item->text());
}

void ConnectionWindow::ForgetRecentFile() {
  const QListWidgetItem* item = recent_->currentItem();
  if (!item) return;
  QStringList files = RecentFiles();
  files.removeAll(item->data(Qt::UserRole).toString());
  StoreRecentFiles(files);
  delete item;
}

void ConnectionWindow::GivenChanged() {
  const bool given = !Text().empty();
  connect_->setEnabled(given);
  test_->setEnabled(given);
  ShowStatus(Mark::Kind::None, {});  // what was tested is no longer what is given
}

// --- Testing and connecting ---

bool ConnectionWindow::Test() {
  const std::string text = Text();
  if (text.empty() || !dialog_.test) return false;
  ShowStatus(Mark::Kind::None, Say(texts_, text::Connecting));
  status_->repaint();  // the driver may keep the window waiting
  mark_->repaint();
  const WaitPointer wait;
  std::string message;
  bool works = false;
  try {
    message = dialog_.test(text);
    works = message.empty();
  } catch (const std::exception& error) {
    message = PhraseOf(error).In(texts_);
  } catch (...) {
    message = Phrase(text::UnknownError).In(texts_);
  }
  if (works) {
    ShowStatus(Mark::Kind::Success, Say(texts_, text::ConnectionWorks));
    working_ = text;
    return true;
  }
  QString shown = ToQString(message).trimmed();
  if (shown.isEmpty()) shown = Say(texts_, text::ConnectionFails);
  // A driver may repeat what it was given, but the field hides the password. A shorter one than this would tear
  // up the message, and so give itself away.
  constexpr qsizetype kLeastHidden = 4;
  const QString password = password_->text();
  if (tabs_->currentIndex() == static_cast<int>(ConnectionWay::DataSource) && password.size() >= kLeastHidden) {
    shown.replace(password, QStringLiteral("***"));
  }
  ShowStatus(Mark::Kind::Error, shown);
  return false;
}

void ConnectionWindow::ShowStatus(Mark::Kind kind, const QString& text) {
  working_.clear();
  mark_->Show(kind);
  status_->setPlainText(text);
  status_->setFocusPolicy(text.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
  ApplyColors();
  if (kind == Mark::Kind::None) return;
  QAccessibleEvent announcement(status_, QAccessible::Alert);
  QAccessible::updateAccessibility(&announcement);
}

// A connection that fails keeps the window and all that was typed into it.
void ConnectionWindow::accept() {
  const std::string text = Text();
  if (text.empty()) return;
  if (dialog_.test && text != working_ && !Test()) return;
  if (tabs_->currentIndex() == static_cast<int>(ConnectionWay::SqliteFile)) RememberFile(file_->text());
  QDialog::accept();
}

void ConnectionWindow::done(int result) {
  QSettings().setValue(QLatin1String(kWayKey), QLatin1String(kWayNames[std::max(tabs_->currentIndex(), 0)]));
  QDialog::done(result);
}

// --- Keys and looks ---

bool ConnectionWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (watched == filter_ && sources_->WalkFromFilter(*event)) return true;
    if (watched == recent_ && key->key() == Qt::Key_Delete) {
      ForgetRecentFile();
      return true;
    }
    // Enter begins a line there.
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (watched == text_ && enter && key->modifiers().testFlag(Qt::ControlModifier)) {
      connect_->click();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

void ConnectionWindow::FocusFirstField() {
  switch (static_cast<ConnectionWay>(tabs_->currentIndex())) {
    case ConnectionWay::SqliteFile:
      file_->setFocus();
      return;
    case ConnectionWay::DataSource:
      filter_->setFocus();
      return;
    case ConnectionWay::Text:
      text_->setFocus();
      return;
  }
}

void ConnectionWindow::showEvent(QShowEvent* event) {
  if (!event->spontaneous()) FocusFirstField();
  QDialog::showEvent(event);
}

void ConnectionWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && status_) ApplyColors();
}

// The style's own colour of a placeholder is too pale to read.
void ConnectionWindow::ApplyColors() {
  QPalette field;
  field.setColor(QPalette::PlaceholderText, Theme(palette()).Of(ColorRole::QuietText));
  for (QWidget* edit : {static_cast<QWidget*>(file_), static_cast<QWidget*>(filter_), static_cast<QWidget*>(user_),
                        static_cast<QWidget*>(password_), static_cast<QWidget*>(text_)}) {
    edit->setPalette(field);
  }
  const Theme onWindow = Theme::ForWindow(palette());
  QPalette message;
  message.setColor(QPalette::Base, palette().color(QPalette::Window));
  message.setColor(QPalette::Text,
                   onWindow.Of(mark_->Shown() == Mark::Kind::Error ? ColorRole::Error : ColorRole::Text));
  status_->setPalette(message);
}

}  // namespace zrqrybld

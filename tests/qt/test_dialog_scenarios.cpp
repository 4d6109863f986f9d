// The windows that ask for a connection, for tables and for a kind of join: the scenarios of tests/data/dialogs.txt.
#include <QAbstractItemView>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>

#include "tests/player.h"
#include "tests/qt/dialogs.h"
#include "zrqrybld/adapters/qt/mark.h"

namespace zrqrybld {
namespace {

class DialogScene : public test::Player {
 public:
  DialogScene() {
    UseSettingsIn(folder_.path());
    QSettings().clear();
    KnowWindows();
    KnowHands();
    KnowQuestions();
  }

 private:
  void Show(std::unique_ptr<QDialog> window) {
    window_ = std::move(window);
    window_->show();
    QApplication::setActiveWindow(window_.get());
    size_ = window_->size();
  }
  // The widget with this accessible name, text or class; "focus" has the keyboard, "list" is that of the tab in front.
  QWidget& Find(const std::string& name) {
    if (name == "window") return *window_;
    if (name == "focus") return *QApplication::focusWidget();
    if (name == "list") return *window_->findChild<QTabWidget*>()->currentWidget();
    const QString wanted = ToQString(name);
    for (QWidget* widget : window_->findChildren<QWidget*>()) {
      const QString text = widget->property("text").toString().remove(QLatin1Char('&'));
      if (widget->accessibleName() == wanted || text == wanted || widget->inherits(name.c_str())) return *widget;
    }
    throw std::runtime_error("no widget " + name);
  }
  static std::string TextOf(const QWidget& widget) {
    const auto* edit = qobject_cast<const QPlainTextEdit*>(&widget);
    return ToUtf8(edit ? edit->toPlainText() : widget.property("text").toString());
  }
  static std::string YesNo(bool value) { return value ? "yes" : "no"; }
  void ConnectTo(const QString& path) {
    actions["connection"]({});
    window_->findChild<QTabWidget*>()->setCurrentIndex(0);
    Find("File").setProperty("text", path);
    static_cast<QPushButton&>(Find("Connect")).click();
  }

  void KnowWindows() {
    actions["tables"] = [this](auto&) {
      auto window = std::make_unique<TablesWindow>(TestTables([this](const std::vector<std::string>& names) {
        if (!fault_.empty()) throw std::runtime_error(fault_);
        for (const std::string& name : names) heard_ += (heard_.empty() ? "" : ", ") + name;
      }));
      window->SetErrorHandler([this](const std::exception& error) { heard_ += error.what(); });
      Show(std::move(window));
    };
    actions["join"] = [this](const Words& w) { Show(std::make_unique<JoinWindow>(TestJoin(w[1], w[2]))); };
    actions["connection"] = [this](auto&) {
      Show(std::make_unique<ConnectionWindow>(ConnectionDialog{
          .dataSources = {"Archive", "Sales", "Sales (old)", "Größen"}, .test = [this](const auto& given) {
            heard_ += (heard_.empty() ? "" : ", ") + given;
            wasBusy_ = QGuiApplication::overrideCursor() != nullptr;
            if (!fault_.empty()) throw std::runtime_error(fault_);
            return answer_;
          }}));
    };
    actions["answer"] = [this](const Words& w) { answer_ = OrNone(w[1]); };
    actions["fault"] = [this](const Words& w) { fault_ = w[1]; };
    actions["stored"] = [](const Words& w) { QSettings().setValue(ToQString(w[1]), ToQString(w[2])); };
    actions["connectto"] = [this](const Words& w) {
      for (auto name = w.begin() + 1; name != w.end(); ++name) {
        const QString path = folder_.filePath(ToQString(*name));
        QFile made(path);
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        ConnectTo(path);
      }
    };
  }

  void KnowHands() {
    actions["keys"] = [this](const Words& w) { QTest::keyClicks(&Find(w[1]), ToQString(w[2])); };
    actions["key"] = [this](const Words& w) {
      const QKeyCombination key = QKeySequence(ToQString(w[2]))[0];
      QTest::keyClick(&Find(w[1]), key.key(), key.keyboardModifiers());
    };
    actions["insert"] = [this](const Words& w) { static_cast<QLineEdit&>(Find(w[1])).insert(ToQString(w[2])); };
    actions["clear"] = [this](const Words& w) { static_cast<QLineEdit&>(Find(w[1])).clear(); };
    actions["set"] = [this](const Words& w) {
      QWidget& widget = Find(w[1]);
      if (auto* edit = qobject_cast<QPlainTextEdit*>(&widget)) edit->setPlainText(ToQString(w[2]));
      widget.setProperty("text", ToQString(w[2]));
    };
    actions["click"] = [this](const Words& w) { static_cast<QPushButton&>(Find(w[1])).click(); };
    actions["tap"] = [this](const Words& w) {
      QWidget& widget = Find(w[1]);
      QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(8, widget.height() / 2));
    };
    actions["tab"] = [this](const Words& w) { window_->findChild<QTabWidget*>()->setCurrentIndex(std::stoi(w[1])); };
    actions["all"] = [this](const Words& w) { static_cast<QAbstractItemView&>(Find(w[1])).selectAll(); };
    actions["row"] = [this](const Words& w) {
      auto& list = static_cast<QAbstractItemView&>(Find(w[1]));
      const QPoint place = list.visualRect(list.model()->index(std::stoi(w[2]), 0)).center();
      const std::string how = w.size() > 3 ? w[3] : "";
      QTest::mouseClick(list.viewport(), Qt::LeftButton, how == "Ctrl" ? Qt::ControlModifier : Qt::NoModifier, place);
      if (how == "double") QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
    };
    // A button that is reached by its key is shown pressed first.
    actions["wait"] = [this](auto&) { EXPECT_TRUE(QTest::qWaitFor([this] { return !heard_.empty(); })); };
  }

  void KnowQuestions() {
    answers["heard"] = [this](auto&) { return std::exchange(heard_, ""); };
    answers["visible"] = [this](auto&) { return YesNo(window_->isVisible()); };
    answers["enabled"] = [this](const std::string& of) { return YesNo(Find(of).isEnabled()); };
    answers["focus"] = [this](const std::string& of) { return YesNo(Find(of).hasFocus()); };
    answers["text"] = [this](const std::string& of) { return TextOf(Find(of)); };
    answers["count"] = [this](const std::string& of) {
      return std::to_string(static_cast<QAbstractItemView&>(Find(of)).model()->rowCount());
    };
    answers["says"] = [this](const std::string& of) {
      const auto labels = window_->findChildren<QLabel*>();
      return YesNo(std::ranges::any_of(
          labels, [&](const QLabel* label) { return label->isVisible() && label->text().contains(ToQString(of)); }));
    };
    answers["tab"] = [this](auto&) { return std::to_string(window_->findChild<QTabWidget*>()->currentIndex()); };
    answers["mark"] = [this](auto&) {
      const Mark::Kind kind = window_->findChild<Mark*>()->Shown();
      return std::string(kind == Mark::Kind::None      ? "none"
                         : kind == Mark::Kind::Error   ? "error"
                         : kind == Mark::Kind::Warning ? "warning"
                                                       : "success");
    };
    answers["grown"] = [this](auto&) {
      QApplication::processEvents();
      return YesNo(window_->size() != size_);
    };
    answers["wasbusy"] = [this](auto&) { return YesNo(wasBusy_); };
    answers["busy"] = [](auto&) { return YesNo(QGuiApplication::overrideCursor() != nullptr); };
    answers["result"] = [this](auto&) { return dynamic_cast<ConnectionWindow&>(*window_).Text(); };
    answers["file"] = [this](auto&) { return ToUtf8(QFileInfo(ToQString(TextOf(Find("File")))).fileName()); };
    answers["recent"] = [this](auto&) {
      const QAbstractItemModel& files = *static_cast<QAbstractItemView&>(Find("Recent files")).model();
      QStringList names;
      for (int i = 0; i < files.rowCount(); ++i) names += QFileInfo(files.index(i, 0).data().toString()).fileName();
      return ToUtf8(names.join(QStringLiteral(", ")));
    };
  }

  QTemporaryDir folder_;
  std::unique_ptr<QDialog> window_;
  QSize size_;
  std::string heard_, answer_, fault_;
  bool wasBusy_ = false;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<DialogScene>("DialogScenario", "dialogs.txt");

}  // namespace
}  // namespace zrqrybld

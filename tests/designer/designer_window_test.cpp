#include "tests/designer/designer_window_test.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMessageBox>
#include <QScrollBar>
#include <QSettings>
#include <QTest>
#include <QTimer>

#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld::test {

void KeepIn(const QString& folder) {
  QCoreApplication::setOrganizationName("zrqrybld");
  QCoreApplication::setApplicationName("zrqrybld-designer");
  qputenv("XDG_DATA_HOME", (folder + "/data").toUtf8());
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder + "/config");
}

QStringList RecoveryFiles() { return QDir(Recovery::Folder()).entryList({"*.recovery"}, QDir::Files); }

DesignerWindow::DesignerWindow() {
  window.show();
  QApplication::setActiveWindow(&window);
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

void DesignerWindow::OpenSample() { ASSERT_EQ(Utf8(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB)), ""); }

void DesignerWindow::OpenSampleWith(const QStringList& tables) {
  OpenSample();
  ASSERT_EQ(Utf8(window.AddTables(tables).join("; ")), "");
  QTest::qWait(1);  // the boxes are painted where they stand
}

QueryDesignerWidget& DesignerWindow::Designer() { return window.Tab().Designer(); }

qbQueryBuilder& DesignerWindow::Hub() { return Designer().QueryBuilder(); }

qbGridPane& DesignerWindow::Grid() { return *Hub().GridPane(); }

QWidget* DesignerWindow::Diagram() { return Designer().DiagramView().viewport(); }

std::string DesignerWindow::Statement() { return Utf8(window.Statement()); }

qbEntityList& DesignerWindow::Box(const char* caption) { return *Hub().Entities()->Item(caption)->EntityBox(); }

Ref<qbEntityItem> DesignerWindow::Item(const char* caption, const char* column) {
  return Hub().Entities()->Item(caption)->Items()->Item(column);
}

std::string DesignerWindow::GridRows() {
  std::string text;
  for (std::int32_t row = 1; row <= Grid().RowCount(); ++row) {
    const std::string column = Grid().Value(row, "column").Text();
    if (column.empty()) continue;
    if (!text.empty()) text += ' ';
    if (Grid().Value(row, "output") != Variant(true)) text += '-';
    text += Grid().Value(row, "table").Text() + "." + column;
  }
  return text;
}

QPoint DesignerWindow::InView(TwipsPoint point) {
  const PixelPoint pixels = ScreenScale{}.ToPixels(point);
  const double zoom = Hub().DiagramPane()->Zoom();
  const auto seen = [&](Pixels at, const QScrollBar* bar) {
    return qRound(((at + kSurfaceMargin) * zoom).Value()) - bar->value();
  };
  ControlWidget& view = Designer().DiagramView();
  return {seen(pixels.x, view.horizontalScrollBar()), seen(pixels.y, view.verticalScrollBar())};
}

QPoint DesignerWindow::CheckBox(const char* caption, const char* column) {
  const qbEntityList& box = Box(caption);
  const auto row = static_cast<std::size_t>(Item(caption, column)->Index());
  const TwipsRect place = box.ItemBounds(row);
  Twips first{}, last{};
  for (Twips x = place.left; x < place.Right(); x += Twips(15)) {
    if (box.HitTest({x, place.CenterY()}).part != BoxPart::CheckBox) continue;
    if (first == Twips{}) first = x;
    last = x;
  }
  EXPECT_GT(last, first) << caption << "." << column << " has no check box to be seen";
  return InView({(first + last) / 2, place.CenterY()});
}

QPoint DesignerWindow::RowText(const char* caption, const char* column) {
  const TwipsRect place = Box(caption).ItemBounds(static_cast<std::size_t>(Item(caption, column)->Index()));
  return InView({place.left + place.width / 2, place.CenterY()});
}

QPoint DesignerWindow::Caption(const char* caption) {
  const TwipsRect& place = Box(caption).Bounds();
  return InView({place.left + place.width / 2, place.top + Twips(150)});
}

void DesignerWindow::Click(QPoint place) { QTest::mouseClick(Diagram(), Qt::LeftButton, {}, place); }

void DesignerWindow::WithDialog(const std::function<void()>& open, const std::function<void(QDialog&)>& answer) {
  bool answered = false;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || answered) return;
    answered = true;
    answer(*dialog);
    if (dialog->isVisible()) dialog->reject();
  });
  timer.start(10);
  open();
  // Opened by a key, the dialog runs its own loop within `open`; opened by a timer, it comes a little later.
  EXPECT_TRUE(QTest::qWaitFor([&] { return answered && !QApplication::activeModalWidget(); }));
}

std::string DesignerWindow::MessageOf(const std::function<void()>& open) {
  std::string text;
  WithDialog(open, [&](QDialog& dialog) {
    auto* message = qobject_cast<QMessageBox*>(&dialog);
    ASSERT_TRUE(message);
    text = Utf8(message->text());
    QTest::keyClick(message, Qt::Key_Return);
  });
  return text;
}

}  // namespace zrqrybld::test

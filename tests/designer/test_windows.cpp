// Every window of the designer in its themes, at its scales and from right to left: nothing cut off, nothing left in
// the colours of the theme before, everything legible. The pictures are kept, each by itself and together on sheets.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <map>

#include "designer/appearance.h"
#include "designer/export_window.h"
#include "designer/result_model.h"
#include "tests/designer/access_faults.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld::test {
namespace {

constexpr Appearance kThemes[] = {Appearance::Light, Appearance::Dark, Appearance::HighContrast};

const char* KeyOf(Appearance appearance) {
  return std::ranges::find(AllAppearances(), appearance, &AppearanceName::appearance)->key;
}

// Texts on buttons, tabs and labels that need more room than they have.
void ExpectNothingCutOff(QWidget& window, const std::string& name) {
  const auto check = [&](const QWidget& widget, const QString& text, int room) {
    for (const QString& line : QString(text).remove(QLatin1Char('&')).split(QLatin1Char('\n'))) {
      EXPECT_LE(widget.fontMetrics().horizontalAdvance(line), room + 1) << name << " cuts off: " << Utf8(line);
    }
  };
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (!label->isVisible() || label->text().isEmpty()) continue;
    if (label->wordWrap()) {
      EXPECT_LE(label->heightForWidth(label->width()), label->height() + 1) << name << ": " << Utf8(label->text());
    } else if (!Qt::mightBeRichText(label->text())) {
      check(*label, label->text(), label->contentsRect().width());
    }
  }
  for (const QPushButton* button : window.findChildren<QPushButton*>()) {
    if (button->isVisible()) check(*button, button->text(), button->width() - 8);
  }
  for (const QTabWidget* tabs : window.findChildren<QTabWidget*>()) {
    EXPECT_GE(tabs->width(), tabs->tabBar()->sizeHint().width()) << name;
  }
}

class Windows : public DesignerWindow {
 protected:
  Windows() {
    QApplication::setCursorFlashTime(0);
    OpenSampleWith({"Customers", "Order", "Order Lines"});
    for (const char* column : {"OrderID", "Freight"}) Item("Order", column)->SetChecked(true);
    Item("Customers", "CompanyName")->SetChecked(true);
    Grid().SortRow(2, "Descending");
    Grid().SetValue(2, "criteria", "> ?PARAM(Least freight,10,,number)");
    Grid().Grid()->GotoRowCol(2, "criteria");
    Hub().DiagramPane()->SelectObject(Hub().Entities()->Item("Order"));
  }
  ~Windows() override {
    SetAppearance(Appearance::System);
    QApplication::setLayoutDirection(Qt::LeftToRight);
  }

  QAction* Command(const char* text) {
    for (QAction* action : window.findChildren<QAction*>()) {
      if (action->text().remove(QLatin1Char('&')) == QLatin1String(text)) return action;
    }
    ADD_FAILURE() << "no command " << text;
    return nullptr;
  }

  struct Named {
    const char* name;
    std::function<void()> open;
  };
  std::vector<Named> Dialogs() {
    return {
        {"tables", [this] { Hub().ShowTables(); }},
        {"join", [this] { Hub().RelationshipActivated(Hub().Entities()->Item("Order")->Relationships()->Item(1)); }},
        {"alias", [this] { Hub().DiagramPane()->AskForAlias(Hub().Entities()->Item("Order")); }},
        {"builder", [this] { Grid().ShowExpressionBuilder(); }},
        {"zoom", [this] { Grid().ShowExpressionZoom(); }},
        {"connect", [this] { Hub().PromptForConnection(); }},
        {"parameters", [this] { Command("Parameters...")->trigger(); }},
        {"limit", [this] { Command("Limit Rows...")->trigger(); }},
        {"print", [this] { Command("Print...")->trigger(); }},
        {"export", [this] { ExportWindow(window.Preview().Rows(), {}, *Hub().Texts(), &window).exec(); }},
        {"keys", [this] { Command("Keys")->trigger(); }},
        {"about", [this] { Command("About")->trigger(); }},
        {"message", [this] { window.ShowError("The database cannot be opened:\nit is no database."); }},
    };
  }

  void Keep(QWidget& shown, const std::string& name, Appearance theme) {
    for (const int percent : {100, 200}) {
      if (percent > 100 && theme == Appearance::HighContrast) continue;  // as sharp as the others
      const QImage picture = Paint(shown, percent / 100.0);
      const std::string suffix = std::string("-") + KeyOf(theme) + "-" + std::to_string(percent);
      KeepPicture(picture, "windows/" + name + suffix);
      sheets_[suffix].push_back(picture);
    }
  }

  // Pictures side by side in rows, on grey.
  void KeepSheets() {
    for (const auto& sheets : sheets_) {
      const auto& pictures = sheets.second;
      constexpr int kGap = 16;
      const double scale = pictures.front().devicePixelRatio();
      const int widest = static_cast<int>(1800 * scale);
      const auto place = [&](const auto& draw) {
        int x = kGap, y = kGap, row = 0;
        for (const QImage& picture : pictures) {
          if (x > kGap && x + picture.width() > widest) x = kGap, y += row + kGap, row = 0;
          draw(picture, x, y);
          x += picture.width() + kGap;
          row = std::max(row, picture.height());
        }
        return y + row + kGap;
      };
      QImage sheet(widest + kGap, place([](const QImage&, int, int) {}), QImage::Format_RGB32);
      sheet.fill(Qt::darkGray);
      QPainter painter(&sheet);
      place([&](QImage picture, int x, int y) {
        picture.setDevicePixelRatio(1);
        painter.drawImage(x, y, picture);
      });
      painter.end();
      KeepPicture(sheet, "windows/sheet" + sheets.first);
    }
  }

 private:
  std::map<std::string, std::vector<QImage>> sheets_;
};

// With the tree of the source beside it, as it begins.
TEST_F(Windows, ASmallScreenShowsCriteria) {
  window.resize(1024, 680);
  Command("Tables of the Source")->trigger();
  window.Tab().Panes().ShowRows(true);
  window.Tab().Panes().ShowStatement();
  QApplication::processEvents();
  for (const Appearance theme : kThemes) {
    SetAppearance(theme);
    Keep(window, "small", theme);
  }
  ExpectNothingCutOff(window, "small");
  const PixelRect cell = Grid().Grid()->GetRowColumnXY(2, "criteria");
  EXPECT_GE(cell.width, 120_px);
  EXPECT_LE(cell.Right(), Designer().GridView().ViewSize().width);
  EXPECT_LE(cell.Bottom(), Designer().GridView().ViewSize().height);
}

// The theme is switched while the window is open; afterwards it looks as if it had been opened so.
TEST_F(Windows, FollowEveryThemeWhileTheyAreOpen) {
  std::map<std::string, QImage> switched;
  SetAppearance(Appearance::Light);
  Keep(window, "main", Appearance::Light);
  for (const Appearance theme : kThemes) {
    SetAppearance(theme);
    if (theme != Appearance::Light) Keep(window, "main", theme);
    ExpectNothingCutOff(window, "main");
  }
  for (const Named& dialog : Dialogs()) {
    SCOPED_TRACE(dialog.name);
    SetAppearance(Appearance::Light);
    WithDialog(dialog.open, [&](QDialog& shown) {
      for (const Appearance theme : kThemes) {
        SetAppearance(theme);
        Keep(shown, dialog.name, theme);
      }
      SetAppearance(Appearance::Dark);
      switched[dialog.name] = Paint(shown);
      ExpectNothingCutOff(shown, dialog.name);
    });
    WithDialog(dialog.open, [&](QDialog& shown) {
      EXPECT_EQ(Paint(shown), switched[dialog.name]) << "something keeps the colours of the theme before";
    });
  }
  KeepSheets();
}

TEST_F(Windows, AreSharpAtEveryScaleAndMirroredFromRightToLeft) {
  QApplication::setLayoutDirection(Qt::RightToLeft);
  QApplication::processEvents();
  for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
    KeepPicture(Paint(window, scale), "windows/main-rtl-" + std::to_string(static_cast<int>(scale * 100)));
  }
  // A tick lies where it is seen; the arrow to the left goes to the cell on the left.
  ASSERT_FALSE(Item("Order", "OrderDate")->Checked());
  const QPoint place = CheckBox("Order", "OrderDate");
  Click({Diagram()->width() - place.x(), place.y()});
  EXPECT_TRUE(Item("Order", "OrderDate")->Checked());
  Grid().Grid()->GotoRowCol(1, 1);
  const PixelRect before = Grid().Grid()->GetRowColumnXY(1, 1);
  QTest::keyClick(&Designer().GridView(), Qt::Key_Left);
  EXPECT_EQ(Grid().Column(), 2) << "the next column stands to the left";
  EXPECT_LT(Designer().GridView().ToScreen(Grid().Grid()->GetRowColumnXY(1, 2)).left(),
            Designer().GridView().ToScreen(before).left());
  QTest::keyClick(&Designer().GridView(), Qt::Key_F2);
  EXPECT_EQ(QApplication::focusWidget()->mapToGlobal(QPoint(0, 0)).x(),
            Designer().GridView().ToScreen(Grid().Grid()->GetRowColumnXY(1, 2)).left() + 2)
      << "the editor lies over its cell";
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_EQ(Designer().SqlView().layoutDirection(), Qt::LeftToRight);
  for (const Named& dialog : Dialogs()) {
    WithDialog(dialog.open, [&](QDialog& shown) {
      KeepPicture(Paint(shown), std::string("windows/") + dialog.name + "-rtl");
      ExpectNothingCutOff(shown, dialog.name);
    });
  }
}

// Everything has a name, is told in the order in which it is read, and shows when it has the keyboard.
TEST_F(Windows, AreUsedWithoutSeeingThemAndWithoutAMouse) {
  for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
    QApplication::setLayoutDirection(direction);
    MainWindow whole;
    whole.OpenDatabase(ZRQRYBLD_SAMPLE_DB);
    whole.show();
    for (QWidget* part : whole.findChildren<QWidget*>()) {
      if (part->inherits("QDockWidget")) part->show();
    }
    whole.Tab().Panes().ShowRows(true);
    QTest::keyClick(&whole.Tab().Designer().SqlView(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClick(&whole.Tab().Designer().DiagramView(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(AccessFaults(whole), "");
    for (const Named& dialog : Dialogs()) {
      WithDialog(dialog.open, [&](QDialog& shown) { EXPECT_EQ(AccessFaults(shown), "") << dialog.name; });
    }
  }
}

// The style draws the outlines itself, so they are measured where they are painted.
TEST(Appearances, FieldsAndButtonsHaveOutlinesThatAreSeen) {
  for (const Appearance theme : kThemes) {
    SetAppearance(theme);
    QWidget window;
    window.resize(200, 160);
    QWidget* const widgets[] = {new QLineEdit(&window), new QPushButton("Close", &window), new QComboBox(&window),
                                new QPlainTextEdit(&window)};
    for (int i = 0; i < 4; ++i) widgets[i]->setGeometry(20, 10 + i * 36, 160, 30);
    window.show();
    const QImage picture = Paint(window);
    for (int i = 0; i < 4; ++i) {
      double strongest = 1;
      for (int x = 18; x < 24; ++x) {
        strongest = std::max(
            strongest, Theme::Contrast(picture.pixelColor(x, 25 + i * 36), PaletteOf(theme).color(QPalette::Window)));
      }
      EXPECT_GE(strongest, 3.0) << KeyOf(theme) << " " << widgets[i]->metaObject()->className();
    }
  }
  SetAppearance(Appearance::System);
}

TEST(Appearances, AreLegibleInEveryRole) {
  struct Pair {
    QPalette::ColorRole ink, ground;
  };
  constexpr Pair kPairs[] = {
      {QPalette::WindowText, QPalette::Window},         {QPalette::Text, QPalette::Base},
      {QPalette::Text, QPalette::AlternateBase},        {QPalette::ButtonText, QPalette::Button},
      {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::ToolTipText, QPalette::ToolTipBase},
      {QPalette::PlaceholderText, QPalette::Base},      {QPalette::Link, QPalette::Window}};
  for (const Appearance theme : kThemes) {
    const QPalette palette = PaletteOf(theme);
    ExpectLegible(Theme(palette), KeyOf(theme));
    ExpectLegible(Theme::ForWindow(palette), KeyOf(theme));
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      for (const Pair& pair : kPairs) {
        EXPECT_GE(Theme::Contrast(palette.color(group, pair.ink), palette.color(group, pair.ground)), 4.5)
            << KeyOf(theme) << " group " << group << " ink " << pair.ink << " on " << pair.ground;
      }
    }
    EXPECT_GE(Theme::Contrast(palette.color(QPalette::Highlight), palette.color(QPalette::Base)), 3.0) << KeyOf(theme);
  }
}

}  // namespace
}  // namespace zrqrybld::test

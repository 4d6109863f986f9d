// The designer: a window for people, and a script's tool with --print-sql and --screenshot.
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>
#include <QTimer>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>

#include "designer/appearance.h"
#include "designer/main_window.h"
#include "designer/options.h"
#include "designer/preview_pane.h"
#include "designer/query_document.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/entities.h"

namespace {

using zrqrybld::DesignerOptions;
using zrqrybld::MainWindow;

constexpr std::chrono::milliseconds kPatienceAtEnd{1000};

// Does what the command line asks for; returns what went wrong.
QStringList Prepare(MainWindow& window, const DesignerOptions& options) {
  QStringList errors;
  if (!window.LanguageFailure().isEmpty()) errors += window.LanguageFailure();
  window.SetConnectSaved(options.connectSaved);
  if (!options.database.isEmpty() || !options.connection.isEmpty()) {
    const QString error = options.connection.isEmpty() ? window.OpenDatabase(options.database)
                                                       : window.OpenConnection(options.connection.toStdString());
    if (!error.isEmpty()) return {error};
  } else if (!options.tables.isEmpty() && options.query.isEmpty()) {
    return {"--add-table needs a database: give its file, or --connect."};
  }
  if (!options.query.isEmpty()) {
    if (const QString error = window.Document().Open(options.query); !error.isEmpty()) return {error};
  }
  // Behind the source and the query, which bring a dialect along.
  if (!options.syntax.isEmpty()) window.SetSyntax(options.syntax);
  if (!options.parseSql.isEmpty()) {
    if (const QString error = window.ParseFile(options.parseSql); !error.isEmpty()) return errors + QStringList{error};
  }
  if (!options.tables.isEmpty()) errors += window.AddTables(options.tables);
  for (const QString& tick : options.ticks) {
    if (const QString error = window.TickColumn(tick); !error.isEmpty()) errors += error;
  }
  return errors;
}

int RunScript(MainWindow& window, const DesignerOptions& options) {
  const QStringList errors = Prepare(window, options);
  for (const QString& error : errors) QTextStream(stderr) << "zrqrybld-designer: " << error << '\n';
  if (!errors.isEmpty()) return 1;
  if (!options.save.isEmpty()) {
    if (const QString error = window.Document().SaveAs(options.save); !error.isEmpty()) {
      QTextStream(stderr) << "zrqrybld-designer: " << error << '\n';
      return 1;
    }
  }
  if (options.printSql) QTextStream(stdout) << window.Statement() << '\n';
  if (!options.screenshot.isEmpty()) {
    // Laid out and painted as if shown, without a window that flashes up on the user's screen.
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QCoreApplication::processEvents();
    if (!window.grab().save(options.screenshot)) {
      QTextStream(stderr) << "zrqrybld-designer: the picture cannot be written to " << options.screenshot << '\n';
      return 1;
    }
  }
  return 0;
}

// The memory in use, where the system tells it.
qint64 ResidentKib() {
  QFile file("/proc/self/status");
  if (!file.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : file.readAll().split('\n')) {
    if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').first().toLongLong();
  }
  return 0;
}

// Of this program's own threads: what a busy machine does beside it does not count.
double ProcessorMilliseconds() { return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

struct Took {
  double milliseconds;
  double processor;
};

// From a tick in the first table to the whole window painted with the new statement, on average. Nothing without a
// table.
std::optional<Took> MeasureTick(MainWindow& window) {
  const auto* designer = window.findChild<zrqrybld::QueryDesignerWidget*>();
  if (!designer || designer->QueryBuilder().Entities()->Count() == 0) return std::nullopt;
  const auto column = designer->QueryBuilder().Entities()->Item(1)->Items()->Item(1);
  constexpr int kTimes = 20;
  QElapsedTimer timer;
  timer.start();
  const double before = ProcessorMilliseconds();
  for (int i = 0; i < kTimes; ++i) {
    column->SetChecked(!column->Checked());
    window.grab();
  }
  return Took{static_cast<double>(timer.nsecsElapsed()) / 1e6 / kTimes, (ProcessorMilliseconds() - before) / kTimes};
}

void Begin(MainWindow& window, const DesignerOptions& options, const QElapsedTimer& sinceStart) {
  const bool recovered = !options.measureStart && window.OfferLostWork();
  if (!recovered) {
    for (const QString& error : Prepare(window, options)) window.ShowError(error);
  }
  if (!options.measureStart) return;
  QCoreApplication::processEvents();  // painted
  QTextStream(stdout) << "usable after " << sinceStart.elapsed() << " ms (" << ProcessorMilliseconds()
                      << " ms of processor), " << ResidentKib() << " KiB resident\n";
  if (const std::optional<Took> tick = MeasureTick(window)) {
    QTextStream(stdout) << "a tick painted after " << tick->milliseconds << " ms (" << tick->processor
                        << " ms of processor)\n";
  }
  QCoreApplication::exit();  // not quit: nobody is there to be asked about unsaved changes
}

}  // namespace

int main(int argc, char** argv) {
  QElapsedTimer sinceStart;
  sinceStart.start();
  std::unique_ptr<QCoreApplication> application;
  if (zrqrybld::OnlyPrints({argv, static_cast<std::size_t>(argc)})) {
    application = std::make_unique<QCoreApplication>(argc, argv);
  } else {
    application = std::make_unique<QApplication>(argc, argv);
  }
  QApplication::setOrganizationName("zrqrybld");  // where its settings are kept
  QApplication::setApplicationName("zrqrybld-designer");
  QGuiApplication::setApplicationDisplayName("Query Designer");
  QApplication::setApplicationVersion(ZRQRYBLD_VERSION);
  const DesignerOptions options = zrqrybld::ReadCommandLine(QApplication::arguments());
  // A script's picture does not depend on who runs it.
  zrqrybld::SetAppearance(!options.theme.isEmpty() ? zrqrybld::FindAppearance(options.theme)
                          : options.IsScript()     ? zrqrybld::Appearance::System
                                                   : zrqrybld::StoredAppearance());
  MainWindow window(options.language);
  if (options.IsScript()) return RunScript(window, options);
  window.BeginSession();
  window.show();
  QTimer::singleShot(0, &window, [&] { Begin(window, options, sinceStart); });
  const int status = QApplication::exec();
  // A source that does not answer must not keep the program alive; everything else is done by now.
  if (!zrqrybld::PreviewJob::WaitForAll(kPatienceAtEnd)) std::_Exit(status);
  return status;
}

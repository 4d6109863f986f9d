#include "designer/lost_work.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <vector>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

QString TimeOf(const Recovery::Lost& lost) { return QLocale().toString(lost.Time(), QLocale::ShortFormat); }

// A question with a way to keep the work, one to delete it, and one to decide later. Whether it is to be kept.
bool Ask(QWidget* window, const TextSource& texts, Recovery::Lost& lost, QMessageBox::Icon icon, TextId question,
         const QString& about, TextId keep) {
  QMessageBox box(icon, QGuiApplication::applicationDisplayName(), Say(texts, question), QMessageBox::NoButton, window);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(about);
  const QAbstractButton* kept = box.addButton(Say(texts, keep), QMessageBox::AcceptRole);
  const QAbstractButton* discard = box.addButton(Say(texts, text::DeleteIt), QMessageBox::DestructiveRole);
  box.setEscapeButton(box.addButton(Say(texts, text::AskLater), QMessageBox::RejectRole));
  box.exec();
  if (box.clickedButton() == discard) lost.Discard();
  return box.clickedButton() == kept;
}

// What cannot be brought back may still be of use to somebody who reads the file; nothing removes it unasked.
void OfferToPutAside(QWidget* window, const TextSource& texts, const LostWorkAnswers& answers, Recovery::Lost& lost,
                     const QString& reason) {
  const QString file = Say(texts, text::ItIsIn, QDir::toNativeSeparators(lost.Path()), TimeOf(lost));
  if (!Ask(window, texts, lost, QMessageBox::Warning, text::CannotBringBack,
           reason.isEmpty() ? file : file + "\n" + reason, text::PutAside)) {
    return;
  }
  const QString kept = lost.PutAside();
  answers.happened(kept.isEmpty() ? Say(texts, text::CannotPutAside)
                                  : Say(texts, text::FileIsNow, QDir::toNativeSeparators(kept)));
}

bool Offer(QWidget* window, const TextSource& texts, const LostWorkAnswers& answers, Recovery::Lost& lost) {
  if (!lost.IsReadable()) {
    OfferToPutAside(window, texts, answers, lost, {});
    return false;
  }
  const QString name = lost.Work().file.isEmpty() ? Say(texts, text::NeverSaved) : lost.Work().file;
  if (!Ask(window, texts, lost, QMessageBox::Question, text::AskBringBack,
           Say(texts, text::ChangedOn, name, TimeOf(lost)), text::BringBack)) {
    return false;
  }
  if (const QString error = answers.bringBack(lost.Work()); !error.isEmpty()) {
    OfferToPutAside(window, texts, answers, lost, error);
    return false;
  }
  lost.Discard();
  return true;
}

}  // namespace

bool OfferLostWork(QWidget* window, const TextSource& texts, const LostWorkAnswers& answers) {
  bool any = false;
  std::vector<Recovery::Lost> asked;  // held until the end, or what is to be asked later would be found again
  while (std::optional<Recovery::Lost> lost = Recovery::FindLost()) {
    // A file that cannot be removed is not asked about for ever.
    if (std::ranges::find(asked, lost->Path(), &Recovery::Lost::Path) != asked.end()) break;
    any |= Offer(window, texts, answers, *lost);
    asked.push_back(std::move(*lost));
  }
  return any;
}

}  // namespace zrqrybld

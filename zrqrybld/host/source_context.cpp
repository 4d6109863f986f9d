#include "zrqrybld/host/source_context.h"

#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/host/language.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

SourceContext::SourceContext(std::shared_ptr<Toolkit> toolkit)
    : toolkit_(std::move(toolkit)),
      language_(std::make_shared<LanguageTable>()),
      foreignKeys_(std::make_unique<zrqrybld::ForeignKeys>()) {
  toolkit_->SetTexts(language_);
  properties_->Add(std::int16_t{0}, "_QBDSFLAGS");
  FillCatalogs(*keywords_, *operators_, *functions_, *quotedIdentifiers_);
}

SourceContext::~SourceContext() = default;

Ref<zrqrybld::Connection> SourceContext::Connection() {
  if (!connection_) connection_ = std::make_shared<ProviderConnection>(toolkit_->Providers());
  return connection_;
}

bool SourceContext::IsConnected() const { return connection_ && connection_->IsOpen(); }

void SourceContext::StoreConnection(Ref<zrqrybld::Connection> connection) {
  connection_ = std::move(connection);
  foreignKeys_->Clear();
}

std::shared_ptr<const WordSet> SourceContext::ReservedWords() const {
  const std::uint64_t revision = keywords_->Revision() + functions_->Revision();
  if (reservedWords_ && reservedWordsRevision_ == revision) return reservedWords_;
  auto words = std::make_shared<WordSet>(sourceWords_);
  for (const auto& keyword : *keywords_) words->insert(keyword->Name());
  for (const auto& function : *functions_) {
    if (function->IsReserved()) words->insert(function->Name());
  }
  reservedWords_ = std::move(words);
  reservedWordsRevision_ = revision;
  return reservedWords_;
}

void SourceContext::SetSourceWords(const std::vector<std::string>& words) {
  sourceWords_ = WordSet(words.begin(), words.end());
  reservedWords_ = nullptr;
}

std::string SourceContext::GetLanguageString(std::int32_t id) const { return language_->Get(id); }

std::shared_ptr<const TextSource> SourceContext::Texts() const { return language_; }

std::string SourceContext::Say(const Phrase& phrase) const { return phrase.In(*language_); }

std::string SourceContext::Say(const std::exception& failure) const { return PhraseOf(failure).In(*language_); }

std::string Say(const Ref<QueryContext>& context, const Phrase& phrase) {
  return context ? context->source.Say(phrase) : phrase.English();
}

}  // namespace zrqrybld

#include "zrqrybld/adapters/web/web_designer.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "zrqrybld/grid/grid_layout.h"
#include "zrqrybld/hub/query_builder.h"

namespace zrqrybld {
namespace {

// What the page is told of.
enum : int { kStatement = 1, kHistory = 2, kTexts = 3, kSqlOnly = 4 };

// Twips.
constexpr float kColumnNameWidth = 2400;
constexpr float kTableNameWidth = 1800;

std::unordered_map<int, std::unique_ptr<WebDesigner>>& All() {
  static std::unordered_map<int, std::unique_ptr<WebDesigner>> all;
  return all;
}

}  // namespace

WebDesigner& WebDesigner::Make() {
  auto home = std::make_shared<WebHome>();
  home->designer = NextPageNumber();
  std::unique_ptr<WebDesigner> made(new WebDesigner(home));
  home->hub = RefTo(*made->hub_);
  return *All().emplace(home->designer, std::move(made)).first->second;
}

WebDesigner* WebDesigner::Find(int number) {
  const auto found = All().find(number);
  return found == All().end() ? nullptr : found->second.get();
}

void WebDesigner::End(int number) { All().erase(number); }

WebDesigner::WebDesigner(std::shared_ptr<WebHome> home)
    : home_(std::move(home)),
      toolkit_(std::make_shared<WebToolkit>(home_)),
      hub_(qbQueryBuilder::Create(toolkit_)),
      diagram_(std::make_shared<WebSurface>(home_)),
      grid_(std::make_shared<WebSurface>(home_)),
      area_(std::make_shared<WebTextArea>(home_)) {}

void WebDesigner::Start() {
  const Ref<qbDiagramPane> diagram = qbDiagramPane::Create();
  const Ref<qbGridPane> grid = qbGridPane::Create();
  const Ref<qbSQLPane> sql = qbSQLPane::Create();
  hub_->SetDiagramPane(diagram);
  hub_->SetGridPane(grid);
  hub_->SetSQLPane(sql);
  diagram_->SetControl(diagram);
  grid_->SetControl(grid->Grid());
  grid->Grid()->SetRowKeysTakeCurrent(true);
  sql->AttachTextArea(area_.get());
  area_->Suggest(qbIntelliList::Create(hub_, EditedText::Statement));
  const auto tell = [number = Number()](int what) { return [number, what] { zrp_changed(number, what); }; };
  links_.push_back(sql->SQLChanged.Connect(tell(kStatement)));
  links_.push_back(sql->SqlOnlyChanged.Connect(tell(kSqlOnly)));
  links_.push_back(hub_->HistoryChanged.Connect(tell(kHistory)));
  links_.push_back(hub_->TextsChanged.Connect([this] {
    FitColumns();
    zrp_changed(Number(), kTexts);
  }));
  FitColumns();
}

void WebDesigner::FitColumns() {
  const Ref<qbGridPane> pane = hub_->GridPane();
  if (!pane) return;
  zrGrid& grid = *pane->Grid();
  for (std::int32_t i = 1; i <= grid.Columns()->Count(); ++i) {
    const Ref<zrGridColumn> column = grid.Columns()->Item(i);
    float least = column->Width();
    if (column->Index() == kColumnColumn) least = std::max(kColumnNameWidth, least);
    if (column->Index() == kColumnTable) least = std::max(kTableNameWidth, least);
    if (column->Width() > 0) grid.FitColumn(i, least);
  }
}

// A program may hold the hub and its panes longer: they go on without a page.
WebDesigner::~WebDesigner() {
  links_.clear();
  if (const Ref<qbSQLPane> sql = hub_->SQLPane()) sql->AttachTextArea(nullptr);
  diagram_->SetControl(nullptr);
  grid_->SetControl(nullptr);
}

}  // namespace zrqrybld

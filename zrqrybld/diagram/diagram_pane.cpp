#include "zrqrybld/diagram/diagram_pane.h"

#include <utility>

#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/diagram_painter.h"
#include "zrqrybld/diagram/diagram_parts.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/stored_values.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {
namespace {

using F = DiagramProperties;
constexpr StoredTable kStored = {
    Stored<F, &F::entityMinimizeButton>("EntityMinimizeButton"),
    Stored<F, &F::entityBackColor>("EntityBackColor", kStoredAlways),
    Stored<F, &F::entityForeColor>("EntityForeColor", kStoredAlways),
    Stored<F, &F::entityFrameColor>("EntityFrameColor", kStoredAlways),
    Stored<F, &F::backColor>("BackColor", kStoredAlways),
    Stored<F, &F::oleDropMode>("OLEDropMode"),
    Stored<F, &F::entityFont>("EntityFont", kStoredAlways),
    Stored<F, &F::entityCaptionFont>("EntityCaptionFont", kStoredAlways),
};

}  // namespace

qbDiagramPane::qbDiagramPane() : parts_(std::make_unique<DiagramParts>(*this)) {}

qbDiagramPane::~qbDiagramPane() = default;

Ref<qbDiagramPane> qbDiagramPane::Create() {
  const Ref<qbDiagramPane> pane(new qbDiagramPane());
  pane->parts_->wholeJoins = std::make_shared<qbWholeJoins>(pane, &pane->parts_->scene);
  pane->parts_->camera.UpdateScrollBars();
  return pane;
}

void qbDiagramPane::AboutBox() {
  if (const Ref<QueryContext> context = Context()) {
    context->source.GetToolkit().GetDialogs().ShowMessage("zrQryBld\r\n" + context->source.Say(text::AboutDiagram),
                                                          MessageIcon::Information);
  }
}

void qbDiagramPane::Clear() {
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  parts_->edits.Clear();
}

const Ref<qbEntities>& qbDiagramPane::Entities() const { return parts_->entities; }

const Ref<qbWholeJoins>& qbDiagramPane::WholeJoins() const { return parts_->wholeJoins; }

Ref<Object> qbDiagramPane::SelectedObject() const { return parts_->selection.Selected(); }

Ref<qbQueryBuilder> qbDiagramPane::QueryBuilder() const {
  const Ref<QueryContext> context = Context();
  return context ? context->design.Hub() : nullptr;
}

// --- Appearance ---

template <auto Field, class T>
void qbDiagramPane::Store(const T& value) {
  parts_->properties.*Field = value;
  PropertyChanged.Raise(StoredKey<Field>(kStored));
}

void qbDiagramPane::ApplyAppearance() {
  const BoxMetrics metrics = parts_->properties.MetricsOn(GetSurface());
  for (const Ref<qbEntityList>& box : parts_->scene.Boxes()) {
    parts_->properties.Colour(*box);
    box->SetMetrics(metrics);
  }
  Refresh();
}

const Ref<ImageList>& qbDiagramPane::ItemsImageList() const { return parts_->properties.itemsImageList; }

void qbDiagramPane::SetItemsImageList(Ref<ImageList> images) {
  parts_->properties.itemsImageList = std::move(images);
  for (const Ref<qbEntityList>& box : parts_->scene.Boxes()) box->SetImages(parts_->properties.itemsImageList);
  Refresh();
}

const Font& qbDiagramPane::EntityFont() const { return parts_->properties.entityFont; }

void qbDiagramPane::SetEntityFont(const Font& font) {
  Store<&F::entityFont>(font);
  ApplyAppearance();
}

Color qbDiagramPane::EntityForeColor() const { return parts_->properties.entityForeColor; }

void qbDiagramPane::SetEntityForeColor(Color color) {
  Store<&F::entityForeColor>(color);
  ApplyAppearance();
}

Color qbDiagramPane::EntityBackColor() const { return parts_->properties.entityBackColor; }

void qbDiagramPane::SetEntityBackColor(Color color) {
  Store<&F::entityBackColor>(color);
  ApplyAppearance();
}

Color qbDiagramPane::BackColor() const { return parts_->properties.backColor; }

void qbDiagramPane::SetBackColor(Color color) {
  Store<&F::backColor>(color);
  Refresh();
}

const Font& qbDiagramPane::EntityCaptionFont() const { return parts_->properties.entityCaptionFont; }

void qbDiagramPane::SetEntityCaptionFont(const Font& font) {
  Store<&F::entityCaptionFont>(font);
  ApplyAppearance();
}

Color qbDiagramPane::EntityFrameColor() const { return parts_->properties.entityFrameColor; }

void qbDiagramPane::SetEntityFrameColor(Color color) {
  Store<&F::entityFrameColor>(color);
  ApplyAppearance();
}

bool qbDiagramPane::EntityMinimizeButton() const { return parts_->properties.entityMinimizeButton; }

void qbDiagramPane::SetEntityMinimizeButton(bool show) { Store<&F::entityMinimizeButton>(show); }

OLEDropModeEnum qbDiagramPane::OLEDropMode() const { return parts_->properties.oleDropMode; }

void qbDiagramPane::SetOLEDropMode(OLEDropModeEnum mode) { Store<&F::oleDropMode>(mode); }

void qbDiagramPane::ReadProperties(const PropertyStore& store) {
  ReadStored(kStored, store, parts_->properties);
  ApplyAppearance();
}

void qbDiagramPane::WriteProperties(PropertyStore& store) const { WriteStored(kStored, store, parts_->properties); }

void qbDiagramPane::OnSurfaceChanged() { ApplyAppearance(); }

bool qbDiagramPane::PlacesByJoins() const { return parts_->layout.PlacesByJoins(); }

void qbDiagramPane::SetPlacesByJoins(bool places) { parts_->layout.SetPlacesByJoins(places); }

bool qbDiagramPane::ShowMinimap() const { return parts_->minimap.Shown(); }

void qbDiagramPane::SetShowMinimap(bool show) { parts_->minimap.Show(show); }

// --- The view ---

double qbDiagramPane::Zoom() const { return parts_->camera.Zoom(); }

void qbDiagramPane::SetZoom(double zoom, PixelPoint about) { parts_->camera.SetZoom(zoom, about); }

void qbDiagramPane::ZoomToFit() { parts_->camera.ZoomToFit(); }

void qbDiagramPane::Arrange() { parts_->layout.Arrange(); }

std::string qbDiagramPane::PictureSvg() const { return parts_->pictures.Svg(); }

PixelSize qbDiagramPane::PictureSize() const { return parts_->pictures.Size(); }

void qbDiagramPane::PaintPicture(Canvas& canvas) const { parts_->pictures.Paint(canvas); }

void qbDiagramPane::SavePicture(const std::string& path) const { parts_->pictures.Save(path); }

void qbDiagramPane::AskToSavePicture() { parts_->pictures.AskToSave(); }

bool qbDiagramPane::CopyPicture() const { return parts_->pictures.Copy(); }

void qbDiagramPane::SetMinimized(const qbEntity& entity, bool minimized) {
  if (entity.EntityBox()) parts_->edits.Minimize(*entity.EntityBox(), minimized);
}

// --- Selecting, going about ---

void qbDiagramPane::SelectObject(const Ref<Object>& object) { parts_->selection.Select(object); }

void qbDiagramPane::DropSelection() { parts_->selection.Drop(); }

void qbDiagramPane::OpenMenu() { parts_->keys.ShowMenu(); }

void qbDiagramPane::SelectAll() { parts_->selection.SelectAll(*parts_->entities); }

std::vector<Ref<qbEntity>> qbDiagramPane::SelectedEntities() const { return parts_->selection.Entities(); }

bool qbDiagramPane::BeginKeyJoin() { return parts_->keyJoin.Begin(); }

void qbDiagramPane::AskAndFind() { parts_->finder.AskAndFind(); }

FoundNames qbDiagramPane::FindName(const std::string& part, FindFrom from) { return parts_->finder.Find(part, from); }

void qbDiagramPane::AskForAlias(const Ref<qbEntity>& entity) { parts_->edits.AskForAlias(entity); }

// Nobody is told of the selection's end while the diagram is half-way.
void qbDiagramPane::Restore(const DiagramState& now, const DiagramState& then) {
  parts_->gestures.Cancel();
  parts_->keyJoin.End();
  const Ref<Object> selected = parts_->selection.PutAside();
  parts_->entities->Restore(now, then);
  parts_->layout.KeepAdded();
  parts_->selection.PutBack(selected);
}

void qbDiagramPane::PlaceAdded() { parts_->layout.PlaceAdded(); }

void qbDiagramPane::KeepAdded() { parts_->layout.KeepAdded(); }

// --- Window events ---

void qbDiagramPane::Paint(Canvas& canvas, const PixelRect& dirty) const {
  const DiagramMarks marks{parts_->selection,          parts_->keyJoin,          parts_->mouse.Hover(),
                           parts_->gestures.RowDrag(), parts_->gestures.Frame(), parts_->camera.NamesOnly()};
  PaintPane(canvas, *this, parts_->properties, parts_->scene, parts_->camera, parts_->minimap, marks, dirty);
}

void qbDiagramPane::OnResize() {
  parts_->camera.UpdateScrollBars();
  Refresh();
}

void qbDiagramPane::OnMouseDown(const MouseEvent& event) { parts_->mouse.Down(event); }

void qbDiagramPane::OnMouseMove(const MouseEvent& event) { parts_->mouse.Move(event); }

void qbDiagramPane::OnMouseUp(const MouseEvent& event) { parts_->mouse.Up(event); }

void qbDiagramPane::OnDoubleClick(const MouseEvent& event) { parts_->mouse.DoubleClick(event); }

void qbDiagramPane::OnMouseLeave() { parts_->mouse.Leave(); }

void qbDiagramPane::OnTick() { parts_->gestures.Tick(); }

void qbDiagramPane::OnWheel(const WheelEvent& event) { parts_->mouse.Wheel(event); }

void qbDiagramPane::OnScroll(Orientation orientation, int value) { parts_->camera.ScrollTo(orientation, value); }

bool qbDiagramPane::OnKeyDown(const KeyEvent& event) { return parts_->keys.Down(event); }

void qbDiagramPane::OnKeyUp(const KeyEvent& event) { parts_->keys.Up(event); }

void qbDiagramPane::OnFocusChanged(bool focused) {
  SetHasFocus(focused);
  if (!focused) {
    parts_->mouse.ForgetSpace();
    parts_->gestures.Cancel();
  }
  Refresh();
}

bool qbDiagramPane::OnDragOver(const std::string& text, const MouseEvent& event) {
  return OLEDropMode() == OLEDropManual && parts_->drop.Over(text, event, 1);
}

void qbDiagramPane::OnDragLeave() { parts_->drop.Leave(OLEDropMode() == OLEDropManual); }

void qbDiagramPane::OnDrop(const std::string& text, const MouseEvent& event) {
  parts_->drop.Leave(false);
  if (OLEDropMode() == OLEDropManual) parts_->drop.Drop(text, event);
}

std::string qbDiagramPane::ToolTipAt(PixelPoint point) const { return parts_->mouse.ToolTipAt(point); }

AccessibleTree* qbDiagramPane::Accessible() { return &parts_->access; }

}  // namespace zrqrybld

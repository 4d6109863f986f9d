// The members of the diagram pane and the model it shows.
#include "zrqrybld/automation/binding.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/menu_object.h"
#include "zrqrybld/automation/property_bag.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/image.h"

namespace zrqrybld {
namespace {

using Pane = qbDiagramPane;

void SetZoom(Pane& pane, double zoom) { pane.SetZoom(zoom, {}); }
void SelectObject(Pane& pane, const Ref<Object>& object) { pane.SelectObject(object); }
void AskForAlias(Pane& pane, qbEntity& entity) { pane.AskForAlias(RefTo(entity)); }
void SetMinimized(Pane& pane, const qbEntity& entity, bool minimized) { pane.SetMinimized(entity, minimized); }

constexpr Member kPane[] = {
    Method<Pane, &Pane::AboutBox>("AboutBox"),
    Method<Pane, &Pane::Clear>("Clear"),
    ReadOnly<Pane, &Pane::Entities>("Entities"),
    ReadWrite<Pane, &Pane::ItemsImageList, &Pane::SetItemsImageList>("ItemsImageList"),
    ReadWrite<Pane, &Pane::OLEDropMode, &Pane::SetOLEDropMode>("OLEDropMode"),
    Method<Pane, &Pane::Refresh>("Refresh"),
    ReadOnly<Pane, &Pane::SelectedObject>("SelectedObject"),
    ReadOnly<Pane, &Pane::QueryBuilder>("QueryBuilder"),
    FontProperty<Pane, &Pane::EntityFont, &Pane::SetEntityFont>("EntityFont"),
    ReadWrite<Pane, &Pane::EntityForeColor, &Pane::SetEntityForeColor>("EntityForeColor"),
    ReadWrite<Pane, &Pane::EntityBackColor, &Pane::SetEntityBackColor>("EntityBackColor"),
    ReadWrite<Pane, &Pane::BackColor, &Pane::SetBackColor>("BackColor"),
    FontProperty<Pane, &Pane::EntityCaptionFont, &Pane::SetEntityCaptionFont>("EntityCaptionFont"),
    ReadWrite<Pane, &Pane::EntityFrameColor, &Pane::SetEntityFrameColor>("EntityFrameColor"),
    ReadWrite<Pane, &Pane::EntityMinimizeButton, &Pane::SetEntityMinimizeButton>("EntityMinimizeButton"),
    Raised<Pane, &Pane::ObjectActivate>("ObjectActivate", "object"),
    Raised<Pane, &Pane::ObjectDeactivate>("ObjectDeactivate", "object"),
    Raised<Pane, &Pane::DblClick>("DblClick"),
    Raised<Pane, &Pane::Click>("Click"),
    Raised<Pane, &Pane::MouseUp>("MouseUp", "Button, Shift, x, y"),
    Raised<Pane, &Pane::MouseDown>("MouseDown", "Button, Shift, x, y"),
    Raised<Pane, &Pane::MouseMove>("MouseMove", "Button, Shift, x, y"),
    Raised<Pane, &Pane::ObjectMouseMove>("ObjectMouseMove", "Button, Shift, x, y, object"),
    Raised<Pane, &Pane::ObjectMouseDown>("ObjectMouseDown", "Button, Shift, x, y, object"),
    Raised<Pane, &Pane::ObjectMouseUp>("ObjectMouseUp", "Button, Shift, x, y, object"),
    Raised<Pane, &Pane::EntityItemClick>("EntityItemClick", "Entity, Item"),
    Raised<Pane, &Pane::EntityItemCheck>("EntityItemCheck", "Entity, Item"),
    Raised<Pane, &Pane::EntityClick>("EntityClick", "Entity"),
    Raised<Pane, &Pane::EntityDblClick>("EntityDblClick", "Entity"),
    Raised<Pane, &Pane::BeforeDeleteObject>("BeforeDeleteObject", "object, Cancel"),
    Raised<Pane, &Pane::KeyDown>("KeyDown", "KeyCode, Shift"),
    Raised<Pane, &Pane::KeyUp>("KeyUp", "KeyCode, Shift"),
    Raised<Pane, &Pane::KeyPress>("KeyPress", "KeyAscii"),
    Raised<Pane, &Pane::OLEDragOver>("OLEDragOver", "Data, Effect, Button, Shift, x, y, state"),
    Raised<Pane, &Pane::OLEDragDrop>("OLEDragDrop", "Data, Effect, Button, Shift, x, y"),
    // Beyond the members above: the view, and what a host without a form needs.
    ReadWrite<Pane, &Pane::Zoom, &SetZoom>("Zoom"),
    ReadWrite<Pane, &Pane::PlacesByJoins, &Pane::SetPlacesByJoins>("PlacesByJoins"),
    ReadWrite<Pane, &Pane::ShowMinimap, &Pane::SetShowMinimap>("ShowMinimap"),
    Method<Pane, &Pane::ZoomToFit>("ZoomToFit"),
    Method<Pane, &Pane::Arrange>("Arrange"),
    Method<Pane, &SelectObject>("SelectObject", "object"),
    Method<Pane, &SetMinimized>("SetMinimized", "Entity, Minimized"),
    Method<Pane, &Pane::PictureSvg>("PictureSvg"),
    Method<Pane, &Pane::SavePicture>("SavePicture", "Path"),
    Method<Pane, &Pane::AskToSavePicture>("AskToSavePicture"),
    Method<Pane, &AskForAlias>("AskForAlias", "Entity"),
    Method<Pane, &Pane::SelectAll>("SelectAll"),
    Method<Pane, &Pane::OpenMenu>("OpenMenu"),
    ReadOnly<Pane, &Pane::WholeJoins>("WholeJoins"),
    Raised<Pane, &Pane::BeforeContextMenu>("BeforeContextMenu", "object, Menu"),
    Raised<Pane, &Pane::PropertyChanged>("PropertyChanged", "PropertyName"),
    Method<Pane, &ReadFrom<Pane>>("ReadProperties", "Bag"),
    Method<Pane, &WriteTo<Pane>>("WriteProperties", "Bag"),
};

constexpr Member kEntities[] = {
    Method<qbEntities, &qbEntities::Add>("Add", "Key"),
    ReadOnly<qbEntities, &qbEntities::Count>("Count"),
    ReadOnly<qbEntities, &qbEntities::Item>("Item", "Index"),
    Method<qbEntities, &qbEntities::Remove>("Remove", "Index"),
    Raised<qbEntities, &qbEntities::EntityAdd>("EntityAdd", "Key"),
    Raised<qbEntities, &qbEntities::EntityRemove>("EntityRemove", "Key"),
    Raised<qbEntities, &qbEntities::BeforeAdd>("BeforeAdd", "Key, Cancel"),
    Raised<qbEntities, &qbEntities::BeforeRemove>("BeforeRemove", "Key, Cancel"),
};

constexpr Member kEntity[] = {
    ReadWrite<qbEntity, &qbEntity::Caption, &qbEntity::SetCaption>("Caption"),
    ReadWrite<qbEntity, &qbEntity::CaptionIcon, &qbEntity::SetCaptionIcon>("CaptionIcon"),
    ReadWrite<qbEntity, &qbEntity::Height, &qbEntity::SetHeight>("Height"),
    ReadOnly<qbEntity, &qbEntity::Index>("Index"),
    ReadOnly<qbEntity, &qbEntity::Items>("Items"),
    ReadWrite<qbEntity, &qbEntity::Left, &qbEntity::SetLeft>("Left"),
    ReadOnly<qbEntity, &qbEntity::Properties>("Properties"),
    ReadOnly<qbEntity, &qbEntity::Relationships>("Relationships"),
    ReadWrite<qbEntity, &qbEntity::SelectedItem, &qbEntity::SetSelectedItem>("SelectedItem"),
    ReadWrite<qbEntity, &qbEntity::TagVariant, &qbEntity::SetTagVariant>("TagVariant"),
    ReadWrite<qbEntity, &qbEntity::Top, &qbEntity::SetTop>("Top"),
    ReadWrite<qbEntity, &qbEntity::Width, &qbEntity::SetWidth>("Width"),
    ReadWrite<qbEntity, &qbEntity::BackColor, &qbEntity::SetBackColor>("BackColor"),
    ReadWrite<qbEntity, &qbEntity::CaptionIconMaskColor, &qbEntity::SetCaptionIconMaskColor>("CaptionIconMaskColor"),
    ReadWrite<qbEntity, &qbEntity::UseCaptionIconMaskColor, &qbEntity::SetUseCaptionIconMaskColor>(
        "UseCaptionIconMaskColor"),
    ReadWrite<qbEntity, &qbEntity::ShowMinimizeButton, &qbEntity::SetShowMinimizeButton>("ShowMinimizeButton"),
};

constexpr Member kItems[] = {
    Method<qbEntityItems, &qbEntityItems::Add>("Add", "[Text], [Key]"),
    Method<qbEntityItems, &qbEntityItems::Clear>("Clear"),
    ReadOnly<qbEntityItems, &qbEntityItems::Count>("Count"),
    Method<qbEntityItems, &qbEntityItems::FindByText>("FindByText", "Text, [CaseSensitive]"),
    ReadOnly<qbEntityItems, &qbEntityItems::Item>("Item", "Index"),
    Method<qbEntityItems, &qbEntityItems::Remove>("Remove", "Index"),
};

constexpr Member kItem[] = {
    ReadWrite<qbEntityItem, &qbEntityItem::Checked, &qbEntityItem::SetChecked>("Checked"),
    ReadOnly<qbEntityItem, &qbEntityItem::Index>("Index"),
    ReadWrite<qbEntityItem, &qbEntityItem::Key, &qbEntityItem::SetKey>("Key"),
    ReadOnly<qbEntityItem, &qbEntityItem::Properties>("Properties"),
    ReadWrite<qbEntityItem, &qbEntityItem::Text, &qbEntityItem::SetText>("Text"),
    ReadWrite<qbEntityItem, &qbEntityItem::Bold, &qbEntityItem::SetBold>("Bold"),
    ReadWrite<qbEntityItem, &qbEntityItem::Color, &qbEntityItem::SetColor>("Color"),
    ReadWrite<qbEntityItem, &qbEntityItem::SmallIcon, &qbEntityItem::SetSmallIcon>("SmallIcon"),
    ReadWrite<qbEntityItem, &qbEntityItem::ToolTipText, &qbEntityItem::SetToolTipText>("ToolTipText"),
};

constexpr Member kRelationships[] = {
    Method<qbRelationships, &qbRelationships::Add>("Add", "Target"),
    Method<qbRelationships, &qbRelationships::Clear>("Clear"),
    ReadOnly<qbRelationships, &qbRelationships::Count>("Count"),
    Method<qbRelationships, &qbRelationships::Exists>("Exists", "Entity1, Entity2, Index1, Index2"),
    ReadOnly<qbRelationships, &qbRelationships::Item>("Item", "Index"),
    Method<qbRelationships, &qbRelationships::Remove>("Remove", "Index"),
};

constexpr Member kRelationship[] = {
    ReadOnly<qbRelationship, &qbRelationship::Index>("Index"),
    ReadWrite<qbRelationship, &qbRelationship::ItemData, &qbRelationship::SetItemData>("ItemData"),
    ReadWrite<qbRelationship, &qbRelationship::LeftPicture, &qbRelationship::SetLeftPicture>("LeftPicture"),
    ReadOnly<qbRelationship, &qbRelationship::Source>("Source"),
    ReadWrite<qbRelationship, &qbRelationship::SourceItemIndex, &qbRelationship::SetSourceItemIndex>("SourceItemIndex"),
    ReadOnly<qbRelationship, &qbRelationship::Target>("Target"),
    ReadWrite<qbRelationship, &qbRelationship::TargetItemIndex, &qbRelationship::SetTargetItemIndex>("TargetItemIndex"),
    ReadWrite<qbRelationship, &qbRelationship::LeftIndicator, &qbRelationship::SetLeftIndicator>("LeftIndicator"),
    ReadWrite<qbRelationship, &qbRelationship::RightIndicator, &qbRelationship::SetRightIndicator>("RightIndicator"),
    ReadWrite<qbRelationship, &qbRelationship::RightPicture, &qbRelationship::SetRightPicture>("RightPicture"),
    ReadWrite<qbRelationship, &qbRelationship::Comparison, &qbRelationship::SetComparison>("Comparison"),
    ReadWrite<qbRelationship, &qbRelationship::Condition, &qbRelationship::SetCondition>("Condition"),
    ReadWrite<qbRelationship, &qbRelationship::GroupLevel, &qbRelationship::SetGroupLevel>("GroupLevel"),
    ReadWrite<qbRelationship, &qbRelationship::Existence, &qbRelationship::SetExistence>("Existence"),
};

constexpr Member kWholeJoins[] = {
    ReadOnly<qbWholeJoins, &qbWholeJoins::Count>("Count"),
    ReadOnly<qbWholeJoins, &qbWholeJoins::Item>("Item", "Index"),
    Method<qbWholeJoins, &qbWholeJoins::Between>("Between", "Entity1, Entity2"),
};

constexpr Member kWholeJoin[] = {
    ReadOnly<qbWholeJoin, &qbWholeJoin::Source>("Source"),
    ReadOnly<qbWholeJoin, &qbWholeJoin::Target>("Target"),
    ReadWrite<qbWholeJoin, &qbWholeJoin::ItemData, &qbWholeJoin::SetItemData>("ItemData"),
    ReadOnly<qbWholeJoin, &qbWholeJoin::Count>("Count"),
    ReadOnly<qbWholeJoin, &qbWholeJoin::Item>("Item", "Index"),
    ReadOnly<qbWholeJoin, &qbWholeJoin::Text>("Text"),
    Method<qbWholeJoin, &qbWholeJoin::Remove>("Remove"),
    ReadWrite<qbWholeJoin, &qbWholeJoin::Existence, &qbWholeJoin::SetExistence>("Existence"),
};

const ClassInfo kClasses[] = {
    {"qbDiagramPane", kPane, "", [] { return Ref<Object>(Pane::Create()); }},
    {"qbEntities", kEntities, "Item"},
    {"qbEntity", kEntity, "Caption"},
    {"qbEntityItems", kItems, "Item"},
    {"qbEntityItem", kItem, "Text"},
    {"qbRelationships", kRelationships, "Item"},
    {"qbRelationship", kRelationship, ""},
    {"qbWholeJoins", kWholeJoins, "Item"},
    {"qbWholeJoin", kWholeJoin, "Item"},
};

}  // namespace

std::span<const ClassInfo> DiagramClasses() { return kClasses; }

}  // namespace zrqrybld

#include "tools/replay/StatePrinter.h"

#include <memory>

#include "control/ControlParts.h"
#include "control/PDFViewCtrl.h"
#include "tools/replay/Session.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/ViewerInspection.h"

namespace velko::replay {

namespace {

using velko::vkit::BlockState;
using velko::vkit::IViewerInspection;
using velko::vkit::PageItemState;
using velko::vkit::PDFViewCtrl;
using velko::vkit::Render_ScreenOffsetInfo;
using velko::vkit::ViewerState;

void AddRect(JsonObject& object, const Render_ScreenOffsetInfo& rc) {
    object.Add("x", rc.dbOffsetX).Add("y", rc.dbOffsetY).Add("w", rc.nWidth).Add("h", rc.nHeight);
}

JsonText BitmapText(const BlockState& block) {
    if (!block.bHasBitmap) {
        return nullptr;
    }
    return JsonArray().Add(block.nBitmapWidth).Add(block.nBitmapHeight);
}

JsonObject BlockText(const BlockState& block) {
    JsonObject text;
    text.Add("id", block.nBlockId);
    AddRect(text, block.screenRect);
    text.Add("display", block.bIsDisplay)
        .Add("rendering", block.bIsRendering)
        .Add("bitmap", BitmapText(block));
    return text;
}

JsonObject ItemText(const PageItemState& item) {
    JsonArray blocks;
    for (const BlockState& block : item.blocks) {
        blocks.Add(BlockText(block));
    }
    JsonObject text;
    text.Add("page", item.nPageIndex);
    AddRect(text, item.screenRect);
    text.Add("scale", item.dbScale)
        .Add("rotate", item.nRotate)
        .Add("rows", item.grid.nRows)
        .Add("cols", item.grid.nCols)
        .Add("blocks", blocks);
    return text;
}

void AddControl(JsonObject& text, PDFViewCtrl& control) {
    text.Add("mode", control.GetPageLayoutMode())
        .Add("page", control.GetCurrentPageIndex())
        .Add("count", control.GetPageCount())
        .Add("scale", control.GetScale())
        .Add("rotate", control.GetRotate())
        .Add("min_scale", control.GetMinScale())
        .Add("max_scale", control.GetMaxScale())
        .Add("zoom_mode", control.GetZoomMode())
        .Add("night", control.NightMode())
        .Add("ring", velko::vkit::ControlParts(control).IsProgressRingVisible())
        .Add("dialog", velko::vkit::ControlParts(control).OpenPasswordDialog() != nullptr)
        .Add("visible", JsonArray(control.GetVisiblePages()));
}

void AddViewer(JsonObject& text, const ViewerState& viewer) {
    JsonArray items;
    for (const PageItemState& item : viewer.items) {
        items.Add(ItemText(item));
    }
    text.Add("cache", viewer.nScaleCacheEntries)
        .Add("snapshot", viewer.bShowScaleSnapshot)
        .Add("items", items);
}

}

JsonObject StateOf(Session& session) {
    const auto pInspection = std::dynamic_pointer_cast<IViewerInspection>(session.Viewer());
    JsonObject text;
    AddControl(text, session.Control());
    AddViewer(text, pInspection ? pInspection->Inspect() : ViewerState());
    return text;
}

}

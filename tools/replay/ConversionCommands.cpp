// Commands that ask the viewer where things are.
#include <array>
#include <memory>
#include <unordered_map>

#include "control/PDFViewCtrl.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"
#include "viewers/core/IPDFViewer.h"

namespace velko::replay {

namespace {

using velko::vkit::IPDFViewer;
using Windows::Foundation::Point;
using Windows::Foundation::Rect;

struct Question {
    std::int32_t nPage = 0;
    float fX = 0.0F;
    float fY = 0.0F;
    float fWidth = 0.0F;
    float fHeight = 0.0F;
};

struct Answer {
    bool bValid = false;
    std::int32_t nPage = 0;
    Rect rc; // a point is one without a size
};

using Conversion = Answer (*)(IPDFViewer& viewer, const Question& question);

Answer RectAnswer(const velko::vkit::WrapperDeviceRect& record) {
    return {record.bIsValid, record.nPageIndex, record.rc.IsEmpty() ? Rect() : record.rc};
}

template <auto fnOperation>
Answer ConvertRect(IPDFViewer& viewer, const Question& question) {
    const Rect rc(question.fX, question.fY, question.fWidth, question.fHeight);
    return RectAnswer(*(viewer.*fnOperation)(question.nPage, rc));
}

// Valid when the point lies on a page; beside the pages the answer is the point itself.
Answer DeviceToPage(IPDFViewer& viewer, const Question& question) {
    const Point pt{question.fX, question.fY};
    const auto pRecord = viewer.DevicePointToPagePoint(pt);
    return {viewer.IsPointInPage(pt), pRecord->nPageIndex,
            Rect(pRecord->pt.X, pRecord->pt.Y, 0.0F, 0.0F)};
}

Answer PageToDevice(IPDFViewer& viewer, const Question& question) {
    const auto pRecord =
        viewer.PagePointToDevicePoint(question.nPage, Point{question.fX, question.fY});
    return {pRecord->bIsValid, pRecord->nPageIndex, Rect(pRecord->pt.X, pRecord->pt.Y, 0.0F, 0.0F)};
}

Conversion ConversionByName(const std::string& strWhat) {
    static const std::unordered_map<std::string, Conversion> conversions{
        {"device_to_page", DeviceToPage},
        {"page_to_device", PageToDevice},
        {"page_rect_to_device", ConvertRect<&IPDFViewer::PageRectToDeviceRect>},
        {"device_rect_to_page", ConvertRect<&IPDFViewer::DeviceRectToPageRect>},
        {"page_rect_to_screen", ConvertRect<&IPDFViewer::PageRectToScreenRect>},
        {"screen_rect_to_page", ConvertRect<&IPDFViewer::ScreenRectToPageRect>},
    };
    const auto it = conversions.find(strWhat);
    if (it == conversions.end()) {
        throw FormatError("unknown conversion \"" + strWhat + "\"");
    }
    return it->second;
}

void RunConvert(Session& session, const CommandFields& fields, JsonObject& result) {
    const Conversion fnConvert = ConversionByName(fields.Text("what"));
    const Question question{fields.Int("page"), fields.Float("x"), fields.Float("y"),
                            fields.FloatOr("w", 0.0F), fields.FloatOr("h", 0.0F)};
    const std::shared_ptr<IPDFViewer> pViewer = session.Viewer();
    const Answer answer =
        pViewer ? fnConvert(*pViewer, question) : Answer{false, question.nPage, Rect()};
    result.Add("valid", answer.bValid)
        .Add("page", answer.nPage)
        .Add("x", answer.rc.X)
        .Add("y", answer.rc.Y)
        .Add("w", answer.rc.Width)
        .Add("h", answer.rc.Height);
}

void RunMatrix(Session& session, const CommandFields& fields, JsonObject& result) {
    const std::int32_t nPage = fields.Int("page");
    JsonArray numbers;
    for (const double dbNumber : session.Control().GetDisplayMatrix(nPage)) {
        numbers.Add(dbNumber);
    }
    result.Add("m", numbers);
}

}

std::span<const CommandEntry> ConversionCommands() {
    static constexpr std::array<CommandEntry, 2> kCommands{{
        {"convert", RunConvert},
        {"matrix", RunMatrix},
    }};
    return kCommands;
}

}

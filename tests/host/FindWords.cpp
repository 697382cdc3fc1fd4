// A host application by the widget alone: shows a document, marks where words stand in
// it, selects the first place and copies it.
//
//   find-words FILE WORDS PICTURE
//
// Prints how often they stand there and what was copied, and draws the window.
#include <QApplication>
#include <QClipboard>
#include <QTimer>
#include <cstdio>

#include "engines/mupdf/Register.h"
#include "widget/VelkoPdfView.h"
#include "widget/VelkoRuntime.h"
#include "widget/search/ViewSearch.h"
#include "widget/text/ViewSelection.h"

using namespace velko::vkit;

namespace {

void SelectFirst(VelkoPdfView& view) {
    const HitPlace place = view.Search().Hits().PlaceOf(0);
    const CharRange hit = *view.Search().Hits().At(place);
    view.Selection().Restore({{place.nPage, hit.nFirst}, {place.nPage, hit.nEnd}});
    view.Selection().Copy();
}

// Once nothing is under way any more.
void Report(VelkoPdfView& view, const QString& strPicture) {
    if (view.Search().Hits().IsSearching() || view.Selection().IsCopying() || !view.IsSharp()) {
        return;
    }
    if (view.Selection().IsEmpty() && view.Search().Hits().Count() > 0) {
        SelectFirst(view);
        return;
    }
    std::printf("%lld hits, copied: %s\n", static_cast<long long>(view.Search().Hits().Count()),
                qUtf8Printable(QGuiApplication::clipboard()->text()));
    const bool bDrawn = view.grab().save(strPicture);
    QCoreApplication::exit(bDrawn ? 0 : 1);
}

}

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const VelkoRuntime runtime({.fnRegisterEngine = velko::engines::mupdf::RegisterEngine,
                                .strDataFolder = QString::fromLocal8Bit(argv[argc - 1]) + ".data"});
    VelkoPdfView view;
    view.resize(600, 800);
    view.show();
    QObject::connect(&view, &VelkoPdfView::OpenFailed, [](const QString&, const QString& strWhy) {
        std::printf("%s\n", qUtf8Printable(strWhy));
        QCoreApplication::exit(1);
    });
    QObject::connect(&view, &VelkoPdfView::Opened,
                     [&] { view.Search().Find(QString::fromLocal8Bit(argv[2]), {}); });
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (view.ViewState() == VelkoPdfView::State::Shown) {
            Report(view, QString::fromLocal8Bit(argv[3]));
        }
    });
    poll.start(20);
    view.Open(QString::fromLocal8Bit(argv[1]));
    return QApplication::exec();
}

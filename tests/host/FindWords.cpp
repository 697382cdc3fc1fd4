// A host application by the widget alone: `find-words FILE WORDS PICTURE` marks where words
// stand in a document, selects and copies the first ones, and draws its window.
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
void Report(VelkoPdfView& view, const char* szPicture) {
    if (view.ViewState() != VelkoPdfView::State::Shown || view.Search().Hits().IsSearching() ||
        view.Selection().IsCopying() || !view.IsSharp()) {
        return;
    }
    if (view.Selection().IsEmpty() && view.Search().Hits().Count() > 0) {
        SelectFirst(view);
        return;
    }
    std::printf("%lld hits, copied: %s\n", static_cast<long long>(view.Search().Hits().Count()),
                qUtf8Printable(QGuiApplication::clipboard()->text()));
    QCoreApplication::exit(view.grab().save(szPicture) ? 0 : 1);
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
    QObject::connect(&poll, &QTimer::timeout, [&] { Report(view, argv[3]); });
    poll.start(20);
    view.Open(QString::fromLocal8Bit(argv[1]));
    return QApplication::exec();
}

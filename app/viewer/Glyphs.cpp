#include "app/viewer/Glyphs.h"

#include <QPolygonF>
#include <initializer_list>

namespace velko::viewer {

namespace {

// A line through the points.
void Line(QPainterPath& path, std::initializer_list<QPointF> points) {
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
}

void Page(QPainterPath& path, const QRectF& rc) {
    path.addRoundedRect(rc, 1.0, 1.0);
}

QPainterPath Menu() {
    QPainterPath path;
    for (const double dbY : {5.5, 10.0, 14.5}) {
        Line(path, {{3.5, dbY}, {16.5, dbY}});
    }
    return path;
}

// A folder.
QPainterPath Open() {
    QPainterPath path;
    Line(path, {{3.0, 15.5}, {3.0, 4.5}, {7.5, 4.5}, {9.5, 6.5}, {16.0, 6.5}, {16.0, 9.0}});
    Line(path, {{3.0, 15.5}, {5.5, 9.0}, {18.0, 9.0}, {15.5, 15.5}, {3.0, 15.5}});
    return path;
}

QPainterPath Chevron(bool bNext) {
    QPainterPath path;
    const double dbTip = bNext ? 12.5 : 7.5;
    const double dbBack = 20.0 - dbTip;
    Line(path, {{dbBack, 4.5}, {dbTip, 10.0}, {dbBack, 15.5}});
    return path;
}

QPainterPath Sign(bool bPlus) {
    QPainterPath path;
    Line(path, {{4.5, 10.0}, {15.5, 10.0}});
    if (bPlus) {
        Line(path, {{10.0, 4.5}, {10.0, 15.5}});
    }
    return path;
}

// Arrows to both sides of a page.
QPainterPath FitWidth() {
    QPainterPath path;
    Line(path, {{2.5, 3.5}, {2.5, 16.5}});
    Line(path, {{17.5, 3.5}, {17.5, 16.5}});
    Line(path, {{5.5, 10.0}, {14.5, 10.0}});
    Line(path, {{8.0, 7.5}, {5.5, 10.0}, {8.0, 12.5}});
    Line(path, {{12.0, 7.5}, {14.5, 10.0}, {12.0, 12.5}});
    return path;
}

QPainterPath FitPage() {
    QPainterPath path;
    Page(path, {4.0, 2.5, 12.0, 15.0});
    Line(path, {{10.0, 5.5}, {10.0, 14.5}});
    Line(path, {{8.0, 7.5}, {10.0, 5.5}, {12.0, 7.5}});
    Line(path, {{8.0, 12.5}, {10.0, 14.5}, {12.0, 12.5}});
    return path;
}

QPainterPath Rotate() {
    constexpr int kStart = 60;
    constexpr int kSweep = 290;
    const QRectF rc(4.0, 4.5, 12.0, 12.0);
    QPainterPath path;
    path.arcMoveTo(rc, kStart);
    path.arcTo(rc, kStart, kSweep);
    path.arcMoveTo(rc, kStart);
    const QPointF ptTip = path.currentPosition();
    Line(path, {ptTip + QPointF(-0.8, -3.8), ptTip, ptTip + QPointF(-4.0, 0.9)});
    return path;
}

// Two pages one below the other, both cut off.
QPainterPath Continuous() {
    QPainterPath path;
    Line(path, {{4.5, 2.5}, {4.5, 8.0}, {15.5, 8.0}, {15.5, 2.5}});
    Line(path, {{4.5, 17.5}, {4.5, 12.0}, {15.5, 12.0}, {15.5, 17.5}});
    return path;
}

QPainterPath SinglePage() {
    QPainterPath path;
    Page(path, {4.5, 2.5, 11.0, 15.0});
    return path;
}

// A moon.
QPainterPath Text() {
    QPainterPath path;
    Line(path, {{3.5, 6.5}, {3.5, 4.0}, {16.5, 4.0}, {16.5, 6.5}});
    Line(path, {{10.0, 4.0}, {10.0, 16.0}});
    Line(path, {{7.5, 16.0}, {12.5, 16.0}});
    return path;
}

// A marker over a line.
QPainterPath Highlight() {
    QPainterPath path;
    Line(path, {{3.0, 17.0}, {17.0, 17.0}});
    Line(path, {{6.0, 13.5}, {6.0, 11.0}, {13.0, 3.0}, {16.5, 6.0}, {9.0, 13.5}, {6.0, 13.5}});
    Line(path, {{8.0, 9.0}, {11.0, 11.5}});
    return path;
}

// A sheet with a turned corner.
QPainterPath Note() {
    QPainterPath path;
    Line(path, {{3.5, 3.5}, {16.5, 3.5}, {16.5, 11.5}, {11.5, 16.5}, {3.5, 16.5}, {3.5, 3.5}});
    Line(path, {{11.5, 16.5}, {11.5, 11.5}, {16.5, 11.5}});
    Line(path, {{6.5, 7.5}, {13.5, 7.5}});
    return path;
}

QPainterPath Night() {
    QPainterPath disc;
    disc.addEllipse(QPointF(10.0, 10.0), 7.0, 7.0);
    QPainterPath shade;
    shade.addEllipse(QPointF(13.5, 7.5), 6.0, 6.0);
    return disc.subtracted(shade);
}

QPainterPath FullScreen() {
    QPainterPath path;
    Line(path, {{3.0, 7.5}, {3.0, 3.0}, {7.5, 3.0}});
    Line(path, {{12.5, 3.0}, {17.0, 3.0}, {17.0, 7.5}});
    Line(path, {{17.0, 12.5}, {17.0, 17.0}, {12.5, 17.0}});
    Line(path, {{7.5, 17.0}, {3.0, 17.0}, {3.0, 12.5}});
    return path;
}

QPainterPath Down() {
    QPainterPath path;
    Line(path, {{6.5, 8.5}, {10.0, 12.0}, {13.5, 8.5}});
    return path;
}

QPainterPath Up() {
    QPainterPath path;
    Line(path, {{6.5, 11.5}, {10.0, 8.0}, {13.5, 11.5}});
    return path;
}

// A looking glass.
QPainterPath Find() {
    QPainterPath path;
    path.addEllipse(QPointF(8.5, 8.5), 5.0, 5.0);
    Line(path, {{12.2, 12.2}, {16.5, 16.5}});
    return path;
}

// A large letter and a small one.
QPainterPath MatchCase() {
    QPainterPath path;
    Line(path, {{2.0, 15.0}, {6.0, 5.0}, {10.0, 15.0}});
    Line(path, {{3.4, 11.5}, {8.6, 11.5}});
    path.addEllipse(QPointF(14.3, 12.2), 2.8, 2.8);
    Line(path, {{17.1, 9.2}, {17.1, 15.0}});
    return path;
}

// A word between its ends.
QPainterPath WholeWords() {
    QPainterPath path;
    Line(path, {{2.5, 4.5}, {2.5, 15.5}});
    Line(path, {{17.5, 4.5}, {17.5, 15.5}});
    Line(path, {{6.0, 12.0}, {14.0, 12.0}});
    Line(path, {{6.0, 8.5}, {11.5, 8.5}});
    return path;
}

QPainterPath List() {
    QPainterPath path;
    for (const double dbY : {5.5, 10.0, 14.5}) {
        Line(path, {{3.5, dbY}, {4.0, dbY}});
        Line(path, {{7.5, dbY}, {16.5, dbY}});
    }
    return path;
}

QPainterPath More() {
    QPainterPath path;
    for (const double dbX : {5.0, 10.0, 15.0}) {
        path.addEllipse(QPointF(dbX, 10.0), 0.7, 0.7);
    }
    return path;
}

QPainterPath Close() {
    QPainterPath path;
    Line(path, {{5.5, 5.5}, {14.5, 14.5}});
    Line(path, {{14.5, 5.5}, {5.5, 14.5}});
    return path;
}

// A window with a panel at its left.
QPainterPath SidePanel() {
    QPainterPath path;
    Page(path, {2.5, 3.5, 15.0, 13.0});
    Line(path, {{7.5, 3.5}, {7.5, 16.5}});
    Line(path, {{4.5, 7.0}, {5.5, 7.0}});
    Line(path, {{4.5, 10.0}, {5.5, 10.0}});
    return path;
}

// Lines, some of them set in.
QPainterPath Outline() {
    QPainterPath path;
    Line(path, {{3.0, 4.5}, {15.0, 4.5}});
    Line(path, {{6.5, 8.2}, {17.0, 8.2}});
    Line(path, {{6.5, 11.8}, {14.0, 11.8}});
    Line(path, {{3.0, 15.5}, {13.0, 15.5}});
    return path;
}

// Four small pages.
QPainterPath Pages() {
    QPainterPath path;
    for (const double dbLeft : {3.5, 11.5}) {
        Page(path, {dbLeft, 2.5, 5.0, 6.5});
        Page(path, {dbLeft, 11.0, 5.0, 6.5});
    }
    return path;
}

// A paper clip.
QPainterPath Attachment() {
    QPainterPath path;
    path.moveTo(14.5, 7.5);
    path.lineTo(8.7, 13.3);
    path.cubicTo(7.7, 14.3, 6.1, 12.7, 7.1, 11.7);
    path.lineTo(13.2, 5.6);
    path.cubicTo(15.3, 3.5, 18.3, 6.7, 16.4, 8.7);
    path.lineTo(10.0, 15.2);
    path.cubicTo(6.8, 18.2, 1.9, 13.3, 4.9, 10.2);
    path.lineTo(11.0, 4.0);
    return path;
}

}

// A ribbon.
QPainterPath Bookmark() {
    QPainterPath path({5.5, 3.0});
    path.lineTo(14.5, 3.0);
    path.lineTo(14.5, 17.0);
    path.lineTo(10.0, 13.0);
    path.lineTo(5.5, 17.0);
    path.closeSubpath();
    return path;
}

QPainterPath OutlineOf(Glyph eGlyph) {
    switch (eGlyph) {
        case Glyph::Menu:
            return Menu();
        case Glyph::Open:
            return Open();
        case Glyph::Previous:
            return Chevron(false);
        case Glyph::Next:
            return Chevron(true);
        case Glyph::ZoomOut:
            return Sign(false);
        case Glyph::ZoomIn:
            return Sign(true);
        case Glyph::FitWidth:
            return FitWidth();
        case Glyph::FitPage:
            return FitPage();
        case Glyph::Rotate:
            return Rotate();
        case Glyph::Continuous:
            return Continuous();
        case Glyph::SinglePage:
            return SinglePage();
        case Glyph::Text:
            return Text();
        case Glyph::Highlight:
            return Highlight();
        case Glyph::Note:
            return Note();
        case Glyph::Night:
            return Night();
        case Glyph::FullScreen:
            return FullScreen();
        case Glyph::Close:
            return Close();
        case Glyph::Down:
            return Down();
        case Glyph::Up:
            return Up();
        case Glyph::Find:
            return Find();
        case Glyph::MatchCase:
            return MatchCase();
        case Glyph::WholeWords:
            return WholeWords();
        case Glyph::List:
            return List();
        case Glyph::More:
            return More();
        case Glyph::SidePanel:
            return SidePanel();
        case Glyph::Outline:
            return Outline();
        case Glyph::Pages:
            return Pages();
        case Glyph::Bookmark:
            return Bookmark();
        case Glyph::Attachment:
            return Attachment();
    }
    return {};
}

}

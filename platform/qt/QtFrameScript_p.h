// What a frame is made of: its parts in the order of drawing, gathered first and
// drawn at its end.
//
// Knowing the whole frame saves work twice. Pixels that a later part covers are
// never filled; and of a frame that differs little from the one that is shown
// only what differs is drawn, nothing at all when it is the same.
// Units: device pixels of the target. Threads: the UI thread only. A script
// keeps its memory from frame to frame.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QTransform>
#include <vector>

namespace Platform::Qt {

class QtFrameScript {
public:
    enum class Kind { Clear, Picture, Fill, Outline };

    struct Part {
        Kind eKind = Kind::Clear;
        QRect rcTarget;       // every pixel that the part may touch
        bool bCovers = false; // it leaves nothing of what was there
        QColor color;
        QImage image;
        qint64 nImage = 0; // of its pixels; stays after the image was let go
        QRectF rcSource;
        double dbOpacity = 1.0;
        bool bSmooth = false;
        bool bTurned = false; // drawn as `rcExact` through `transform`
        QRectF rcExact;
        QTransform transform;
        double dbStroke = 0.0;

        bool DrawsTheSame(const Part& other) const;
    };

    void Clear() { m_parts.clear(); }
    bool IsEmpty() const { return m_parts.empty(); }
    Part& Add(Kind eKind, const QRect& rcTarget);

    // Draws what lies in `rcPart`. The pixels that the script does not touch
    // stay as they are.
    void Draw(QImage& target, const QRect& rcPart);

    // The pictures go; what is known of them stays, for comparisons.
    void LetGoOfPictures();

    // Where this frame's pixels may differ from the other's. Only for frames
    // that say what every pixel is.
    QRect DifferenceTo(const QtFrameScript& other) const;
    bool SaysEveryPixel() const { return !m_parts.empty() && m_parts.front().eKind == Kind::Clear; }

    void Swap(QtFrameScript& other) { m_parts.swap(other.m_parts); }

private:
    void DrawPart(QPainter& painter, std::size_t nPart, const QRect& rcPart);
    void FillUncovered(QPainter& painter, std::size_t nPart, const QRect& rcPart);
    void TakeOut(const QRect& rc);
    static void DrawPicture(QPainter& painter, const Part& part);
    static void DrawTurned(QPainter& painter, const Part& part);

    std::vector<Part> m_parts;
    std::vector<QRect> m_uncovered; // while one clear is drawn
    std::vector<QRect> m_pieces;
};

}

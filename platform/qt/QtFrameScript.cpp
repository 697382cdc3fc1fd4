#include "platform/qt/QtFrameScript_p.h"

#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <cmath>

#include "platform/foundation/Exception.h"

namespace Platform::Qt {

namespace {

bool IsWhole(const QRectF& rc) {
    return rc.left() == std::floor(rc.left()) && rc.top() == std::floor(rc.top()) &&
           rc.right() == std::floor(rc.right()) && rc.bottom() == std::floor(rc.bottom());
}

}

bool QtFrameScript::Part::DrawsTheSame(const Part& other) const {
    return eKind == other.eKind && rcTarget == other.rcTarget && color == other.color &&
           nImage == other.nImage && rcSource == other.rcSource && dbOpacity == other.dbOpacity &&
           bSmooth == other.bSmooth && bTurned == other.bTurned && rcExact == other.rcExact &&
           transform == other.transform && dbStroke == other.dbStroke;
}

QtFrameScript::Part& QtFrameScript::Add(Kind eKind, const QRect& rcTarget) {
    Part& part = m_parts.emplace_back();
    part.eKind = eKind;
    part.rcTarget = rcTarget;
    return part;
}

void QtFrameScript::LetGoOfPictures() {
    for (Part& part : m_parts) {
        part.image = QImage();
    }
}

// What lies between the parts that both frames begin and end with.
QRect QtFrameScript::DifferenceTo(const QtFrameScript& other) const {
    const auto fnSame = [](const Part& a, const Part& b) { return a.DrawsTheSame(b); };
    const auto [itFirst, itOther] = std::mismatch(
        m_parts.begin(), m_parts.end(), other.m_parts.begin(), other.m_parts.end(), fnSame);
    const auto [itLast, itOtherLast] =
        std::mismatch(m_parts.rbegin(), std::make_reverse_iterator(itFirst), other.m_parts.rbegin(),
                      std::make_reverse_iterator(itOther), fnSame);
    QRect rcDifference;
    std::for_each(itFirst, itLast.base(), [&](const Part& part) { rcDifference |= part.rcTarget; });
    std::for_each(itOther, itOtherLast.base(),
                  [&](const Part& part) { rcDifference |= part.rcTarget; });
    return rcDifference;
}

// --- drawing ---

void QtFrameScript::Draw(QImage& target, const QRect& rcPart) {
    QPainter painter;
    if (!painter.begin(&target)) {
        throw Platform::Exception(Platform::E_FAIL, "no painter for the frame");
    }
    if (rcPart != target.rect()) {
        painter.setClipRect(rcPart);
    }
    for (std::size_t nPart = 0; nPart < m_parts.size(); ++nPart) {
        if (m_parts[nPart].rcTarget.intersects(rcPart)) {
            DrawPart(painter, nPart, rcPart);
        }
    }
}

void QtFrameScript::DrawPart(QPainter& painter, std::size_t nPart, const QRect& rcPart) {
    const Part& part = m_parts[nPart];
    if (part.eKind == Kind::Clear) {
        FillUncovered(painter, nPart, rcPart);
    } else if (part.bTurned) {
        DrawTurned(painter, part);
    } else if (part.eKind == Kind::Picture) {
        DrawPicture(painter, part);
    } else {
        painter.fillRect(part.rcTarget, part.color);
    }
}

void QtFrameScript::FillUncovered(QPainter& painter, std::size_t nPart, const QRect& rcPart) {
    m_uncovered.assign(1, m_parts[nPart].rcTarget & rcPart);
    for (std::size_t nLater = nPart + 1; nLater < m_parts.size(); ++nLater) {
        if (m_parts[nLater].bCovers) {
            TakeOut(m_parts[nLater].rcTarget);
        }
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& rc : m_uncovered) {
        painter.fillRect(rc, m_parts[nPart].color);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

// Each rectangle leaves what lies above, below, left and right of `rc`.
void QtFrameScript::TakeOut(const QRect& rc) {
    m_pieces.clear();
    const auto fnKeep = [this](int nLeft, int nTop, int nRight, int nBottom) {
        if (nLeft <= nRight && nTop <= nBottom) {
            m_pieces.emplace_back(QPoint(nLeft, nTop), QPoint(nRight, nBottom));
        }
    };
    for (const QRect& rcOld : m_uncovered) {
        const QRect rcOut = rcOld & rc;
        if (rcOut.isEmpty()) {
            m_pieces.push_back(rcOld);
            continue;
        }
        fnKeep(rcOld.left(), rcOld.top(), rcOld.right(), rcOut.top() - 1);
        fnKeep(rcOld.left(), rcOut.bottom() + 1, rcOld.right(), rcOld.bottom());
        fnKeep(rcOld.left(), rcOut.top(), rcOut.left() - 1, rcOut.bottom());
        fnKeep(rcOut.right() + 1, rcOut.top(), rcOld.right(), rcOut.bottom());
    }
    m_uncovered.swap(m_pieces);
}

void QtFrameScript::DrawPicture(QPainter& painter, const Part& part) {
    painter.setOpacity(part.dbOpacity);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, part.bSmooth);
    const QRect rcWhole = part.rcSource.toRect();
    if (IsWhole(part.rcSource) && rcWhole.size() == part.rcTarget.size()) {
        painter.drawImage(part.rcTarget.topLeft(), part.image, rcWhole);
    } else {
        painter.drawImage(QRectF(part.rcTarget), part.image, part.rcSource);
    }
    painter.setOpacity(1.0);
}

void QtFrameScript::DrawTurned(QPainter& painter, const Part& part) {
    painter.setTransform(part.transform);
    if (part.eKind == Kind::Picture) {
        painter.setOpacity(part.dbOpacity);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, part.bSmooth);
        painter.drawImage(part.rcExact, part.image, part.rcSource);
        painter.setOpacity(1.0);
    } else if (part.eKind == Kind::Outline) {
        QPainterPath path;
        path.addRect(part.rcExact);
        painter.strokePath(path, QPen(part.color, part.dbStroke));
    } else {
        painter.fillRect(part.rcExact, part.color);
    }
    painter.resetTransform();
}

}

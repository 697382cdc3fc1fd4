// The outline of the shown document: a tree whose entries lead to their sections, and
// that shows which section is being read.
//
// The mark of that section follows the pages; the tree is scrolled to it only while the
// reader does not use the tree, and opened nowhere but by the reader.
// Lifetime: goes before the view and its facts. Threads: UI thread only.
#pragma once

#include <QTimer>
#include <QWidget>
#include <optional>

#include "widget/facts/DocFacts.h"
#include "widget/facts/OutlineModel.h"

class QLabel;
class QStackedLayout;
class QTreeView;

namespace velko::vkit {
class VelkoPdfView;
}

namespace velko::viewer {

class OutlinePane : public QWidget {
    Q_OBJECT

public:
    OutlinePane(vkit::VelkoPdfView& view, vkit::DocFacts& facts, QWidget* pParent);

    // The row that is marked as being read; for tests.
    QModelIndex Marked() const { return m_marked; }

protected:
    void showEvent(QShowEvent* pEvent) override;

private:
    class Rows; // draws them

    void MakeTree();
    void Fill();
    void Clear();
    void OpenAsToldBy(const vkit::Outline& outline);
    void Take(const QModelIndex& index);
    void FollowReading();
    int EntryBeingRead();
    QModelIndex ShownRowOf(int nEntry) const; // itself, or what it is folded into
    bool IsInUse() const;

    // An entry that was taken counts as read until the reader moves on, also where its
    // section cannot come to the top.
    struct Taken {
        int nEntry = -1;
        vkit::DocumentHeight height;
    };

    vkit::VelkoPdfView& m_view;
    vkit::DocFacts& m_facts;
    vkit::OutlineModel m_model;
    QStackedLayout* m_pLayers;
    QTreeView* m_pTree;
    QLabel* m_pNone;
    QTimer m_follow;
    QPersistentModelIndex m_marked;
    std::optional<Taken> m_taken;
    bool m_bFilled = false;
};

}

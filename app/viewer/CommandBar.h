// The row of commands at the window's top: opening, pages, zoom.
//
// Threads: UI thread only.
#pragma once

#include <QWidget>

#include "widget/VelkoPdfView.h"

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;

namespace velko::viewer {

class CommandBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 40; // Qt's units

    CommandBar(vkit::VelkoPdfView& view, QWidget* pParent);

    // The page field's text and the count beside it, for tests.
    QString PageText() const;
    QString CountText() const;

signals:
    void OpenWanted();
    void CloseWanted();
    void QuitWanted();

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QAction* AddAction(const QString& strText, const QList<QKeySequence>& shortcuts);
    QToolButton* AddButton(const QString& strText, const QString& strTip, QAction* pAction);
    void MakeMenu();
    void MakePageParts();
    void MakeZoomParts();
    void ConnectView();
    void FollowState();
    void TakePage();
    void TakeZoom(const QString& strText);

    vkit::VelkoPdfView& m_view;
    QMenu* m_pMenu = nullptr;
    QLineEdit* m_pPage = nullptr;
    QLabel* m_pCount = nullptr;
    QComboBox* m_pZoom = nullptr;
    QList<QWidget*> m_needDocument;
    QList<QAction*> m_actionsOnDocument;
};

}

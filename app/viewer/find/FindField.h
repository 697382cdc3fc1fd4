// The field for what is searched for. Its keys for steps, for the pages and for leaving
// are told; the others are the field's own.
//
// Threads: UI thread only.
#pragma once

#include <QLineEdit>

namespace velko::viewer {

class FindField : public QLineEdit {
    Q_OBJECT

public:
    explicit FindField(QWidget* pParent);

    // Nothing is found: the field says it too.
    void SetMissing(bool bMissing);

signals:
    void StepWanted(bool bBack); // Return, with Shift back
    void ScreensWanted(int nScreens);
    void Left(); // Escape

protected:
    bool event(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void ShowMissing();

    bool m_bMissing = false;
};

}

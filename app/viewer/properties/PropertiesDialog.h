// What is known of the shown document, in a dialog beside which the pages can be read:
// its properties, and the fonts that it uses. It goes with the document, and stays when that
// one's file changes.
//
// Lifetime: goes before the view and its facts. Threads: UI thread only; what has to be
// read is read on the task pool.
#pragma once

#include <QDialog>
#include <QString>

#include "app/viewer/properties/PropertyTexts.h"
#include "widget/facts/DocFacts.h"
#include "widget/facts/FontModel.h"

class QLabel;
class QLayout;
class QTableView;
class QTextBrowser;

namespace velko::vkit {
class VelkoPdfView;
}

namespace velko::viewer {

class Commands;

class PropertiesDialog : public QDialog {
    Q_OBJECT

public:
    // Shows the one of the window, which is made if there is none.
    static void Show(vkit::VelkoPdfView& view, vkit::DocFacts& facts, const Commands& commands,
                     QWidget* pWindow);

    QString Text() const; // of the properties, for tests
    const vkit::FontModel& Fonts() const { return *m_pFonts; }

private:
    PropertiesDialog(vkit::VelkoPdfView& view, vkit::DocFacts& facts, QWidget* pWindow);

    QWidget* MakeFonts();
    void MakeButtons(QLayout& layout);
    void OnForgotten();
    void ReadFonts();
    void ReadFile();
    void ReadSizes();
    void Fill();
    PropertyRows Rows() const;
    PropertyRows PageRows() const;
    PropertyRows FileRows() const;
    void CountFonts();
    void CopyFonts();

    vkit::VelkoPdfView& m_view;
    vkit::DocFacts& m_facts;
    QTextBrowser* m_pText;
    vkit::FontModel* m_pFonts = nullptr;
    QTableView* m_pFontTable = nullptr;
    QLabel* m_pFontCount = nullptr;
    QString m_strHtml;
    qint64 m_nBytes = -1; // of the file; -1: not known yet
    bool m_bSeveralSizes = false;
};

}

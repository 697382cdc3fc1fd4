// The files that are attached to the shown document, to be saved where the reader says.
// None is opened or run from here.
//
// Lifetime: goes before the view and its facts. Threads: UI thread only.
#pragma once

#include <QWidget>

#include "widget/FilePath.h"
#include "widget/facts/AttachmentModel.h"
#include "widget/facts/AttachmentSaver.h"
#include "widget/facts/DocFacts.h"

class QFileDialog;
class QLabel;
class QListView;
class QPushButton;

namespace velko::vkit {
class VelkoPdfView;
}

namespace velko::viewer {

class AttachmentPane : public QWidget {
    Q_OBJECT

public:
    AttachmentPane(vkit::VelkoPdfView& view, vkit::DocFacts& facts, QWidget* pParent);

private:
    void Fill();
    void Follow(); // what can be done now
    void AskForPlace();
    void SaveTo(const QString& strFile, const std::shared_ptr<velko::pdf::PDFDoc>& pDocument,
                int nFile);
    void Say(const QString& strText);

    vkit::VelkoPdfView& m_view;
    vkit::DocFacts& m_facts;
    vkit::AttachmentModel m_model;
    vkit::AttachmentSaver m_saver;
    QListView* m_pList;
    QPushButton* m_pSave;
    QLabel* m_pOutcome; // of the last save
};

}

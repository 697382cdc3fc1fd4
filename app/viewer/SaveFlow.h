// How the viewer saves: commands, questions to the reader, the bar while it takes long,
// and what has to be answered before a changed document is left.
//
// Questions wait for their answer without keeping anything else from going on; Escape
// cancels what was asked for. One save runs at a time, another one asked for meanwhile
// is left out.
//
// Lifetime: a child of the window. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>

#include "widget/FilePath.h"
#include "widget/VelkoPdfView.h"
#include "widget/edit/SaveFailure.h"

class QMessageBox;
class QProgressBar;

namespace velko::viewer {

class SaveFlow : public QObject {
    Q_OBJECT

public:
    SaveFlow(vkit::VelkoPdfView& view, QWidget* pWindow);

    void Save();
    void SaveAs();

    // `fnGo` runs at once when there is nothing to lose, or when a save or the reader has
    // seen to it; never when the reader cancels. Of several only the last.
    void BeforeLeaving(std::function<void()> fnGo);
    // Shows the file as it is now, whatever is not saved.
    void Reload();
    // A save is under way, or a question is open: the document is not left now.
    bool IsBusy() const;

    void Place(); // the bar, in the window

signals:
    void Told(const QString& strText);
    void Saved(); // into the document's file, which may be another one now

private:
    void ConnectSaver();
    void OnProgress(double dbShare);
    void OnEnded();
    void OnFailed(const vkit::SaveFailure& failure);
    void AskForName(const QString& strTitle);
    void SaveTo(const vkit::FilePath& path);
    void AskAboutChanges();
    void AskBeforeLeaving();
    void Leave();
    QMessageBox* MakeQuestion(const QString& strText, const QString& strMore);
    QString Name() const;

    vkit::VelkoPdfView& m_view;
    QWidget* const m_pWindow;
    QProgressBar* m_pBar = nullptr; // a child of the window, when first needed
    QTimer m_barTimer;
    double m_dbShare = 0.0;
    QPointer<QWidget> m_pQuestion;   // that is open
    std::function<void()> m_fnGo;    // what waits for the document to be saved
    bool m_bOtherNames = false;      // of the file that is being saved
    std::string m_strOtherNamesTold; // of which file
};

}

// Writes a picture of the window once its pages are sharp, then ends the
// program.
//
// Threads: UI thread only. The exit status is 0 when the picture was written,
// 1 when the document did not open, never became sharp, or the picture could
// not be written; the reason goes to standard error.
#pragma once

#include <QObject>
#include <QString>

#include "app/viewer/CommandLine.h"
#include "app/viewer/MainWindow.h"

namespace velko::viewer {

class Screenshot : public QObject {
    Q_OBJECT

public:
    // Of the page that the options name, or of the empty window when they name
    // no document. `window` outlives this object.
    Screenshot(MainWindow& window, const CommandLine& options, QObject* pParent);

private:
    void OnOpened();
    void OnPainted();
    void Write();
    void End(int nStatus, const QString& strText);

    MainWindow& m_window;
    const QString m_strFile;
    const int m_nPage;
    bool m_bPageShown = false;
    bool m_bEnded = false;
};

}

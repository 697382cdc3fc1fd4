// A window with every command and key, to be searched; the keys of commands are changed
// here. The pages can be read meanwhile.
//
// Lifetime: a child of its parent, deleted when it is closed. Threads: UI thread only.
#pragma once

#include <QDialog>
#include <functional>
#include <optional>

#include "app/viewer/Commands.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace velko::viewer {

class KeyField;

// Shows the one that is open, or opens one.
void ShowKeys(Commands& commands, QWidget* pParent);

class KeysDialog : public QDialog {
    Q_OBJECT

public:
    KeysDialog(Commands& commands, QWidget* pParent);

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    enum class Change { Instead, Beside }; // of the keys that there are

    void MakeParts();
    void MakeButtons();
    void FillRows();
    void ShowKeysInRows();
    void Filter(const QString& strText);
    void FollowRow();
    std::optional<Command> Chosen() const;
    void AskForKey(Change eChange);
    void TakeKey(const QKeySequence& key);
    void SetKey(Command eCommand, const QKeySequence& key);
    void EndAsking(const QString& strText = {});
    void Say(const QString& strText);

    Commands& m_commands;
    QLineEdit* m_pSearch;
    QTreeWidget* m_pRows;
    QLabel* m_pText; // what is asked and told below the rows
    KeyField* m_pKey;
    QPushButton* m_pYes = nullptr; // takes a key away from another command
    QPushButton* m_pChange = nullptr;
    QPushButton* m_pAdd = nullptr;
    QPushButton* m_pNone = nullptr;
    QPushButton* m_pFirst = nullptr;
    Change m_eChange = Change::Instead;
    std::function<void()> m_fnYes;
};

}

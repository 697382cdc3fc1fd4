#include "app/viewer/keys/KeysDialog.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "app/viewer/Announce.h"
#include "app/viewer/keys/KeyField.h"
#include "app/viewer/keys/PageKeys.h"

namespace velko::viewer {

namespace {

constexpr QSize kSize{600, 680}; // Qt's units
constexpr int kCommandRole = Qt::UserRole;
constexpr int kWhat = 0;
constexpr int kKeys = 1;

QString TextOf(const QKeySequence& key) {
    return key.toString(QKeySequence::NativeText);
}

QString TextOf(const Commands::Keys& keys) {
    QStringList texts;
    for (const QKeySequence& key : keys) {
        texts << TextOf(key);
    }
    return texts.join(", ");
}

QTreeWidgetItem* AddSection(QTreeWidget& rows, const QString& strName) {
    auto* const pSection = new QTreeWidgetItem(&rows, {strName});
    QFont bold = rows.font();
    bold.setBold(true);
    pSection->setFont(kWhat, bold);
    pSection->setFlags(Qt::ItemIsEnabled);
    pSection->setFirstColumnSpanned(true);
    pSection->setExpanded(true);
    return pSection;
}

bool Matches(const QTreeWidgetItem& row, const QString& strText) {
    return row.text(kWhat).contains(strText, Qt::CaseInsensitive) ||
           row.text(kKeys).contains(strText, Qt::CaseInsensitive);
}

}

void ShowKeys(Commands& commands, QWidget* pParent) {
    if (auto* const pOpen = pParent->findChild<KeysDialog*>()) {
        pOpen->activateWindow();
        return;
    }
    (new KeysDialog(commands, pParent))->show();
}

KeysDialog::KeysDialog(Commands& commands, QWidget* pParent)
    : QDialog(pParent), m_commands(commands) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Keys");
    setObjectName("Keys");
    MakeParts();
    MakeButtons();
    FillRows();
    connect(&m_commands, &Commands::KeysChanged, this, &KeysDialog::ShowKeysInRows);
    addAction(m_commands[Command::Quit]);
    for (const QKeySequence& key : m_commands.KeysOf(Command::Close)) {
        new QShortcut(key, this, this, &QDialog::reject);
    }
    resize(kSize.boundedTo(pParent->size().expandedTo({300, 200})));
    m_pSearch->setFocus();
}

void KeysDialog::MakeParts() {
    auto* const pLayout = new QVBoxLayout(this);
    m_pSearch = new QLineEdit(this);
    m_pSearch->setPlaceholderText("Search commands and keys");
    m_pSearch->setAccessibleName("Search commands and keys");
    m_pSearch->setClearButtonEnabled(true);
    m_pSearch->installEventFilter(this);
    connect(m_pSearch, &QLineEdit::textChanged, this, &KeysDialog::Filter);
    m_pRows = new QTreeWidget(this);
    m_pRows->setAccessibleName("Commands and keys");
    m_pRows->setHeaderLabels({"Command", "Keys"});
    m_pRows->setRootIsDecorated(false);
    m_pRows->setIndentation(12);
    m_pRows->setUniformRowHeights(true);
    connect(m_pRows, &QTreeWidget::currentItemChanged, this, &KeysDialog::FollowRow);
    connect(m_pRows, &QTreeWidget::itemActivated, this, [this] { AskForKey(Change::Instead); });
    m_pText = new QLabel(this);
    m_pText->setWordWrap(true);
    m_pText->setTextFormat(Qt::PlainText);
    MakeAlert(*m_pText);
    m_pKey = new KeyField(this);
    m_pKey->hide();
    connect(m_pKey, &KeyField::Taken, this, &KeysDialog::TakeKey);
    connect(m_pKey, &KeyField::GivenUp, this, [this] {
        if (m_pKey->isVisible()) {
            EndAsking();
        }
    });
    pLayout->addWidget(m_pSearch);
    pLayout->addWidget(m_pRows, 1);
    pLayout->addWidget(m_pText);
    pLayout->addWidget(m_pKey);
}

void KeysDialog::MakeButtons() {
    auto* const pRow = new QHBoxLayout;
    const auto fnAdd = [&](const QString& strText, const std::function<void()>& fnRun) {
        auto* const pButton = new QPushButton(strText, this);
        pButton->setAutoDefault(false);
        connect(pButton, &QPushButton::clicked, this, fnRun);
        pRow->addWidget(pButton);
        return pButton;
    };
    m_pChange = fnAdd("C&hange…", [this] { AskForKey(Change::Instead); });
    m_pAdd = fnAdd("&Add…", [this] { AskForKey(Change::Beside); });
    m_pNone = fnAdd("&No key", [this] { m_commands.SetKeys(*Chosen(), {}); });
    m_pFirst = fnAdd("As at &first",
                     [this] { m_commands.SetKeys(*Chosen(), Commands::FirstKeys(*Chosen())); });
    m_pYes = fnAdd("&Use it here", [this] {
        if (const auto fnYes = std::exchange(m_fnYes, nullptr)) {
            fnYes();
        }
    });
    pRow->addStretch();
    auto* const pButtons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto* const pAll = pButtons->addButton("A&ll as at first", QDialogButtonBox::ResetRole);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pAll, &QPushButton::clicked, this, [this] {
        EndAsking("All commands have the keys that they had at first.");
        m_commands.ResetKeys();
    });
    for (QAbstractButton* const pButton : pButtons->buttons()) {
        static_cast<QPushButton*>(pButton)->setAutoDefault(false);
    }
    auto* const pLayout = static_cast<QVBoxLayout*>(layout());
    pLayout->addLayout(pRow);
    pLayout->addWidget(pButtons);
    EndAsking();
}

// --- rows ------------------------------------------------------------------

void KeysDialog::FillRows() {
    QTreeWidgetItem* const pCommands = AddSection(*m_pRows, "Commands");
    for (int n = 0; n < static_cast<int>(Command::kCount); ++n) {
        auto* const pRow =
            new QTreeWidgetItem(pCommands, {Commands::NameOf(static_cast<Command>(n))});
        pRow->setData(kWhat, kCommandRole, n);
    }
    for (const PageKeySection& section : PageKeySections()) {
        QTreeWidgetItem* const pSection = AddSection(*m_pRows, section.strName);
        for (const auto& [strWhat, strKeys] : section.rows) {
            new QTreeWidgetItem(pSection, {strWhat, strKeys});
        }
    }
    ShowKeysInRows();
    m_pRows->resizeColumnToContents(kWhat);
    m_pRows->setCurrentItem(pCommands->child(0));
}

void KeysDialog::ShowKeysInRows() {
    QTreeWidgetItem& commands = *m_pRows->topLevelItem(0);
    for (int n = 0; n < commands.childCount(); ++n) {
        QTreeWidgetItem& row = *commands.child(n);
        const auto eCommand = static_cast<Command>(row.data(kWhat, kCommandRole).toInt());
        const Commands::Keys keys = m_commands.KeysOf(eCommand);
        QFont font = m_pRows->font();
        font.setBold(keys != Commands::FirstKeys(eCommand));
        row.setText(kKeys, TextOf(keys));
        row.setFont(kKeys, font);
    }
    Filter(m_pSearch->text());
    FollowRow();
}

// The first row that is found is the one that the buttons mean.
void KeysDialog::Filter(const QString& strText) {
    QTreeWidgetItem* pFirst = nullptr;
    for (int nSection = 0; nSection < m_pRows->topLevelItemCount(); ++nSection) {
        QTreeWidgetItem& section = *m_pRows->topLevelItem(nSection);
        bool bAny = false;
        for (int n = 0; n < section.childCount(); ++n) {
            QTreeWidgetItem& row = *section.child(n);
            const bool bShown = Matches(row, strText.trimmed());
            row.setHidden(!bShown);
            bAny = bAny || bShown;
            pFirst = pFirst == nullptr && bShown ? &row : pFirst;
        }
        section.setHidden(!bAny);
    }
    const QTreeWidgetItem* const pCurrent = m_pRows->currentItem();
    if (pCurrent == nullptr || pCurrent->isHidden()) {
        m_pRows->setCurrentItem(pFirst);
    }
}

std::optional<Command> KeysDialog::Chosen() const {
    const QTreeWidgetItem* const pRow = m_pRows->currentItem();
    const QVariant data = pRow != nullptr ? pRow->data(kWhat, kCommandRole) : QVariant();
    return data.isValid() ? std::optional(static_cast<Command>(data.toInt())) : std::nullopt;
}

void KeysDialog::FollowRow() {
    if (m_fnYes) {
        EndAsking(); // it was asked for another row
    }
    const auto eCommand = Chosen();
    m_pChange->setEnabled(eCommand.has_value());
    m_pAdd->setEnabled(eCommand.has_value());
    m_pNone->setEnabled(eCommand && !m_commands.KeysOf(*eCommand).isEmpty());
    m_pFirst->setEnabled(eCommand &&
                         m_commands.KeysOf(*eCommand) != Commands::FirstKeys(*eCommand));
}

// --- asking ----------------------------------------------------------------

void KeysDialog::AskForKey(Change eChange) {
    const auto eCommand = Chosen();
    if (!eCommand) {
        return;
    }
    EndAsking();
    m_eChange = eChange;
    Say(QStringLiteral("New key for “%1”; Esc leaves it as it is.")
            .arg(Commands::NameOf(*eCommand)));
    m_pKey->show();
    m_pKey->setFocus();
}

void KeysDialog::EndAsking(const QString& strText) {
    const bool bKeys = m_pKey->hasFocus() || m_pYes->hasFocus();
    m_fnYes = nullptr;
    m_pYes->hide();
    m_pKey->hide();
    Say(strText);
    if (bKeys) {
        m_pRows->setFocus();
    }
}

void KeysDialog::Say(const QString& strText) {
    m_pText->setText(strText);
    m_pText->setVisible(!strText.isEmpty());
    Announce(*m_pText, strText);
}

void KeysDialog::TakeKey(const QKeySequence& key) {
    const auto eCommand = Chosen();
    if (!eCommand) {
        EndAsking();
        return;
    }
    if (IsPageKey(key)) {
        EndAsking(QStringLiteral("%1 is a key of the pages and stays theirs.").arg(TextOf(key)));
        return;
    }
    const auto eHolder = m_commands.HolderOf(key);
    if (!eHolder || *eHolder == *eCommand) {
        EndAsking();
        SetKey(*eCommand, key);
        return;
    }
    EndAsking(QStringLiteral("%1 is the key of “%2”. Use it for “%3”?")
                  .arg(TextOf(key), Commands::NameOf(*eHolder), Commands::NameOf(*eCommand)));
    m_fnYes = [this, eCommand = *eCommand, key] {
        EndAsking();
        SetKey(eCommand, key);
    };
    m_pYes->show();
    m_pYes->setFocus();
}

void KeysDialog::SetKey(Command eCommand, const QKeySequence& key) {
    Commands::Keys keys =
        m_eChange == Change::Beside ? m_commands.KeysOf(eCommand) : Commands::Keys();
    keys.removeAll(key);
    keys << key;
    m_commands.SetKeys(eCommand, keys);
}

// --- input -----------------------------------------------------------------

void KeysDialog::keyPressEvent(QKeyEvent* pEvent) {
    const bool bReturn = pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter;
    auto* const pButton = bReturn ? qobject_cast<QPushButton*>(focusWidget()) : nullptr;
    if (pButton != nullptr) {
        pButton->click();
    } else if (pEvent->key() == Qt::Key_Escape && m_fnYes) {
        EndAsking();
    } else {
        QDialog::keyPressEvent(pEvent);
    }
}

// From the search into what it found; Escape empties it before it closes the window.
bool KeysDialog::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched != m_pSearch || pEvent->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(pWatched, pEvent);
    }
    const int nKey = static_cast<QKeyEvent*>(pEvent)->key();
    if (nKey == Qt::Key_Down || nKey == Qt::Key_Return || nKey == Qt::Key_Enter) {
        m_pRows->setFocus();
        return true;
    }
    if (nKey == Qt::Key_Escape && !m_pSearch->text().isEmpty()) {
        m_pSearch->clear();
        return true;
    }
    return false;
}

}

#pragma once
// "Resultados de Laboratorio": the blank result page. Opened from the work
// table it takes a free-text result for the exams picked; opened from the
// menu ("Agregar formatos de resultados") it is where the laboratory keeps
// its stored page texts, six menus of them, each filled from the store when
// the screen opens.
#include "lab/sheets/blankpage.h"

#include <QList>
#include <array>
#include <memory>

class QMenu;

namespace Ui {
class Form19;
}

class Form19 : public tq::sheets::BlankPage {
    Q_OBJECT
public:
    explicit Form19(QWidget* parent = nullptr);
    ~Form19() override;

    // The menus of stored texts by their code, 1 (Parasitologia) to 6 (Varios).
    // A new entry at the foot of the menu; the menu's last entry taken away
    // (nothing when it has none). Codes outside 1 to 6 have no menu.
    void addStoredEntry(int menu, const QString& caption);
    void removeLastStoredEntry(int menu);
    int storedEntryCount(int menu) const;

protected:
    // A stored page shown to be printed: the box locked, the menus that
    // change it disabled.
    void lockStored() override;

private:
    struct StoredMenu {
        QMenu* menu = nullptr;
        QAction* model = nullptr;   // the hidden first entry the others are made from
        QList<QAction*> entries;    // in the order they were added
    };
    StoredMenu* storedMenu(int menu);
    const StoredMenu* storedMenu(int menu) const;
    void loadStoredMenus();
    void chooseStored(int menu, const QString& caption);
    void openStoredTextScreen(const QString& name);

    std::unique_ptr<Ui::Form19> ui;
    std::array<StoredMenu, 6> m_menus;
};

#pragma once
// The free-text result page (the blank template, and its twin of code 6): a
// printed sheet on screen with one rich box in the middle. On top of what
// every sheet has (gridsheet.h), both pages share the Enter counter that
// keeps a page to its lines and the "Edicion" menu with its one clipboard for
// the whole program.
#include "lab/sheets/gridsheet.h"

#include <QTextCursor>

class QTextEdit;

namespace tq::sheets {

class BlankPage : public SheetScreen {
    Q_OBJECT
public:
    // The page's text as it is saved: plain text, fonts and colours aside.
    QString pageText() const;
    // Enters counted since the screen opened (nothing lowers it).
    int entersCounted() const { return m_enters; }

protected:
    // The controls of the screen's own .ui that the shared behaviour drives.
    struct Parts {
        QWidget* pagina = nullptr;   // what is printed
        QTextEdit* rich = nullptr;   // Rich1
        SheetMenu archivo;
        QAction* borrar = nullptr;
        QAction* copy = nullptr;
        QAction* paste = nullptr;
    };
    // What tells one page from the other.
    struct Kind {
        int codPlantilla = 0;     // under which template the page is stored
        int enterLimit = 0;       // above this many Enters no key goes in
        bool withEmail = false;   // the heading's address line ends with the mail
        bool marksPrinted = false;   // "Imprimir" marks the sheet's lines printed
    };

    BlankPage(const Kind& kind, QWidget* parent);
    // Wires the parts; called by the screen once its .ui is set up. Fills the
    // heading (a store failure is told and leaves the placeholders).
    void setUp(const Parts& parts);
    // The same from the screen's generated form: both pages name the parts alike.
    template <class Form>
    void setUp(const Form& ui)
    {
        setUp(Parts{ui.pagina,
                    ui.Rich1,
                    {ui.guardar, ui.imprimir, ui.pdf, ui.pdfArchivo, ui.salir},
                    ui.borrar,
                    ui.copy,
                    ui.paste});
    }

    // Replaces the whole text of the box; the Enter counter stays as it is.
    void replaceText(const QString& text);

    bool eventFilter(QObject* watched, QEvent* event) override;

    // The page goes onto every invoice the work table listed.
    SavedSheet store(const SheetContext& context) override;
    void setPrinting(bool printing) override;
    void beforeLeaving() override;
    // A stored page: its text, typed over on a correction.
    void fillStored(const StoredSheet& sheet) override;
    corrections::Saved storeCorrection(const corrections::Target& target,
                                       const QString& descripcion) override;
    QTextEdit* richBox() const { return m_rich; }

private:
    void copySelection();
    void pasteAtEnd();

    int m_enterLimit;
    QTextEdit* m_rich = nullptr;
    int m_enters = 0;
    // The box as it stood before it went on paper.
    QTextCursor m_cursorBeforePaper;
    int m_cursorWidthBeforePaper = 1;
};

}  // namespace tq::sheets

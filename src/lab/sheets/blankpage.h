#pragma once
// The free-text result page (the blank template, and its twin of code 6): a
// printed sheet on screen with one rich box in the middle. What both screens
// share lives here: the page and its heading, the Enter counter that keeps a
// page to its lines, the "Edicion" menu with its one clipboard for the whole
// program, the save onto the work table and the three ways out to paper.
#include "foundation/ui/sheetpage.h"
#include "lab/sheets/opensheet.h"

#include <QMainWindow>
#include <functional>
#include <optional>

class QAction;
class QTextEdit;

namespace tq::sheets {

// A menu entry's action run through the error boundary, as a button's click is.
void onMenu(QAction* action, const QString& what, std::function<void()> fn);

class BlankPage : public QMainWindow, public EntrySheet {
    Q_OBJECT
public:
    // The patient of the first exam picked, today's date, and from then on
    // "Guardar" stores the page onto the picked exams.
    void startEntry(const SheetContext& context,
                    std::function<void(const SavedSheet&)> onSaved) override;

    // The page's text as it is saved: plain text, fonts and colours aside.
    QString pageText() const;
    // Enters counted since the screen opened (nothing lowers it).
    int entersCounted() const { return m_enters; }

protected:
    // The controls of the screen's own .ui that the shared behaviour drives.
    struct Parts {
        QWidget* pagina = nullptr;   // what is printed
        QTextEdit* rich = nullptr;   // Rich1
        QAction* guardar = nullptr;
        QAction* imprimir = nullptr;
        QAction* pdf = nullptr;
        QAction* pdfArchivo = nullptr;
        QAction* salir = nullptr;
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

    explicit BlankPage(QWidget* parent);
    // Wires the parts; called by the screen once its .ui is set up. Fills the
    // heading (a store failure is told and leaves the placeholders).
    void setUp(const Parts& parts, const Kind& kind);

    QTextEdit* rich() const { return m_parts.rich; }
    SheetPage& sheet() { return m_sheet; }
    // Replaces the whole text of the box; the Enter counter stays as it is.
    void replaceText(const QString& text);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void save();
    void print();
    void printWithDialog();
    void saveAsPdf();
    void leave();
    void copySelection();
    void pasteAtEnd();
    std::int32_t formatIdToMark() const;

    Parts m_parts;
    Kind m_kind;
    SheetPage m_sheet{nullptr};
    int m_enters = 0;
    std::optional<SheetContext> m_context;
    std::function<void(const SavedSheet&)> m_onSaved;
    std::int32_t m_savedFormatId = 0;
};

}  // namespace tq::sheets

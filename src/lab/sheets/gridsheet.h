#pragma once
// What the fill-in screens of the result sheets have in common. Each screen
// is a page laid out as the printed sheet (`pagina`: heading, title, patient
// and date, body, "Jefe de Laboratorio") under a menu "Archivo" of save,
// print, print through the dialog, PDF file and exit.
//
// SheetScreen holds the page, the menu and the save onto the work table;
// GridSheet adds the flex grid of hematology, urinalysis and clinical
// chemistry: its shape, the typing rules and the laid-out template. The
// free-text pages (blankpage.h) are a SheetScreen too.
#include "foundation/ui/sheetpage.h"
#include "lab/sheets.h"
#include "lab/sheets/opensheet.h"

#include <QMainWindow>
#include <functional>
#include <optional>

class QAction;
class QKeyEvent;
class QPlainTextEdit;

namespace tq {
class FlexGrid;
}

namespace tq::sheets {

// The entries of the menu "Archivo" of a sheet.
struct SheetMenu {
    QAction* guardar = nullptr;
    QAction* imprimir = nullptr;
    QAction* pdf = nullptr;          // through the printer dialog
    QAction* pdfArchivo = nullptr;   // straight to a PDF file
    QAction* salir = nullptr;
};

// Where the families' sheets part ways beyond their body.
struct SheetTraits {
    bool headingWithEmail = false;   // the heading's address line ends with the mail
    bool savedPerInvoice = false;    // "guardado" is told once per invoice listed
    bool marksPrinted = true;        // "imprimir" marks the sheet's lines printed
};

class SheetScreen : public QMainWindow, public EntrySheet {
    Q_OBJECT
public:
    int templateCode() const { return m_code; }

    // The heading with the patient (and the age, where the page shows it)
    // and today, the grid laid out, and from then on "Guardar" stores onto
    // the work table. Throws DbError.
    void startEntry(const SheetContext& context,
                    std::function<void(const SavedSheet&)> onSaved) override;

    // The id the sheet's print marks: the one it was saved under, else the
    // one proposed by the work table, else none (0).
    std::int32_t formatId() const;

protected:
    SheetScreen(int codPlantilla, QWidget* parent, const SheetTraits& traits = {});
    // Called by the screen once its .ui is set up: the printed page (whose
    // heading is filled from the laboratory's data) and the menu.
    void attach(QWidget* pagina, const SheetMenu& menu);

    SheetPage& page() { return *m_page; }

    // A new sheet for the exams picked (the grid families lay out their template).
    virtual void layOutEntry(const SheetContext&) {}
    // Writes what the sheet holds, with the closing of the exams. Throws DbError.
    virtual SavedSheet store(const SheetContext& context) = 0;
    // The cursors of the grid and of the text box are not part of the sheet
    // on paper: hidden while it is printed, back afterwards.
    virtual void setPrinting(bool) {}
    // What "salir" does before the screen closes.
    virtual void beforeLeaving() {}
    // The name the save dialog proposes for the PDF file: the title and the patient.
    QString proposedPdfName() const;
    // The patient's name as the page shows it.
    QString shownPatient() const;

private:
    void guardar();
    void imprimir();
    void crearPdf();
    void guardarPdf();
    void onPaper(const std::function<void()>& job);

    int m_code;
    SheetTraits m_traits;
    std::optional<SheetPage> m_page;
    SheetMenu m_menu;
    std::optional<SheetContext> m_context;
    std::function<void(const SavedSheet&)> m_onSaved;
    std::optional<SavedSheet> m_saved;
};

class GridSheet : public SheetScreen {
    Q_OBJECT
public:
    // Writes a laid-out template into the grid, every data cell emptied first
    // (the headers stay).
    void showLayout(const QList<Cell>& cells);

    FlexGrid* grid() const { return m_grid; }
    QString comment() const;

protected:
    GridSheet(int codPlantilla, QWidget* parent);
    // `widths` in twips, one per column of the family's grid.
    void attachGrid(QWidget* pagina, FlexGrid* grid, QPlainTextEdit* comment,
                    const QList<int>& widths, const SheetMenu& menu);

    void layOutEntry(const SheetContext& context) override;
    SavedSheet store(const SheetContext& context) override;
    void setPrinting(bool printing) override;

private:
    void shapeGrid(const QList<int>& widths);
    bool typable(int row, int col) const;
    void clicked(int row);
    void keyPressed(int row, int col, QKeyEvent* event);
    void fitColumns();

    FlexGrid* m_grid = nullptr;
    QPlainTextEdit* m_comment = nullptr;
};

}  // namespace tq::sheets

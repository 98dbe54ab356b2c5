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
#include "lab/corrections.h"
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
// Entries a screen lacks are null (the correction screens have only
// "Guardar Cambios" and "Salir").
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

// What the heading of a stored sheet shows: the name, the date of the
// invoice and (on the blank page only) the age recorded on the invoice.
struct StoredHeading {
    QString paciente;
    QString fecha;
    QString edad;
};

class SheetScreen : public QMainWindow, public EntrySheet {
    Q_OBJECT
public:
    int templateCode() const { return m_code; }

    // A saved sheet shown again to be printed (the pending and reprint
    // lists, the history): filled from its rows and, but for the second
    // free-text page, read-only with "Guardar" disabled. "imprimir" then
    // marks the sheet of the program's current format id, whichever list
    // set it last (none since start: nothing is marked). Throws DbError.
    void showStored(const StoredSheet& sheet, const StoredHeading& heading);

    // A saved sheet opened to be corrected: filled from its rows and open to
    // typing. "Guardar" asks `reason` for the reason chosen on the reason
    // screen and, with one, replaces the stored sheet and logs the change
    // (corrections.h), says "El proceso se Realizo con Exito!!!" and closes;
    // without one it says "Debe agregar una descripcion del cambio" and
    // changes nothing. Throws DbError.
    // `onSaved` hears of the correction before the screen closes.
    void startCorrection(const StoredSheet& sheet, const StoredHeading& heading,
                         const corrections::Target& target, std::function<QString()> reason,
                         std::function<void(const corrections::Saved&)> onSaved = {});

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
    // The body of a stored sheet, and what a reprint locks of it (by
    // default "Guardar").
    virtual void fillStored(const StoredSheet& sheet) = 0;
    virtual void lockStored();
    // The body typed over a stored sheet replaces it. Throws AppError/DbError.
    virtual corrections::Saved storeCorrection(const corrections::Target& target,
                                               const QString& descripcion) = 0;
    // What "Guardar" says on a sheet opened neither for the work table nor
    // for a correction.
    virtual QString notStartedMessage() const;
    // The name the save dialog proposes for the PDF file: the title and the patient.
    QString proposedPdfName() const;
    // The patient's name as the page shows it.
    QString shownPatient() const;

private:
    void guardar();
    void corregir();
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
    bool m_reprint = false;
    std::optional<corrections::Target> m_correction;
    std::function<QString()> m_reason;
    std::function<void(const corrections::Saved&)> m_onCorrected;
    std::optional<corrections::Saved> m_corrected;
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
    void fillStored(const StoredSheet& sheet) override;
    void lockStored() override;
    corrections::Saved storeCorrection(const corrections::Target& target,
                                       const QString& descripcion) override;

private:
    void shapeGrid(const QList<int>& widths);
    bool typable(int row, int col) const;
    void clicked(int row);
    void keyPressed(int row, int col, QKeyEvent* event);
    void fitColumns();

    FlexGrid* m_grid = nullptr;
    QPlainTextEdit* m_comment = nullptr;
    bool m_locked = false;   // a stored sheet shown to be printed
};

}  // namespace tq::sheets

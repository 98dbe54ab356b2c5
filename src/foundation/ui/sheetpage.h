#pragma once
// The result sheet as a page: the laboratory's heading on top (name, slogan,
// address line, logo), the sheet's title, the patient and the date, the body
// of the family, and "Jefe de Laboratorio" at the foot. A sheet is printed as
// the picture of that page as it stands on screen, typed values included, so
// what the technician sees is what the patient gets.
//
// Every fill-in and reprint screen lays its page out in its own .ui with the
// widgets named below, and hands the page to SheetPage, which fills the
// heading and prints it.
#include <QPixmap>
#include <QString>

class QLabel;
class QPagedPaintDevice;
class QWidget;

namespace tq {

// The heading texts from `datos`: the address line joins the address, the
// telephone, the fax when there is one, and (on the blank page) the mail.
struct LabHeading {
    QString nombre;
    QString eslogan;
    QString linea;
    QPixmap logo;   // logo.jpg of the data folder; null when there is none
};
// Throws DbError.
LabHeading readLabHeading(bool withEmail);

class SheetPage {
public:
    // `page` is the widget that is printed (the sheet without the menu bar).
    // It must hold QLabels named lblNombreLab, lblEslogan, lblDireccion,
    // imgLogo, lblPaciente, lblFecha, and lblEdad when the family shows the
    // age; any of them missing is simply left alone.
    explicit SheetPage(QWidget* page);

    // Fills the heading from the store (throws DbError).
    void fillHeading(bool withEmail);
    // The patient and the date written on the sheet (and the age, where shown).
    void setPatient(const QString& nombre, const QString& fecha, const QString& edad = {});

    // Paints the page, as it stands, scaled to the paper's width, on one page.
    void paint(QPagedPaintDevice& device) const;
    // "imprimir": the default printer, no dialog. False when nothing printed.
    bool printOnDefaultPrinter() const;
    // "Crear PDF": the printer dialog (a PDF printer may be chosen there).
    bool printWithDialog() const;
    // Beyond the printer dialog: a PDF file chosen through a save dialog.
    // Returns the file written, or empty when cancelled. Throws AppError when
    // the file can't be written.
    QString saveAsPdf(const QString& proposedName) const;

    QWidget* page() const { return m_page; }

private:
    QLabel* label(const char* name) const;
    QWidget* m_page;
};

}  // namespace tq

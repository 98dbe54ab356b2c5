#pragma once
// Composing a priced document: the one way the invoice screen and the order
// screen take a patient, price exam lines, merge a code keyed twice, total
// with the third-age discount and serve the discount box. The two screens
// hold controls of the same names; each hands them over and keeps only what
// tells it apart (its number, its save, its printing).
//
//     m_doc = new DocumentComposer(kInvoice, composerControls(ui.get()), this);
#include "billing/invoice/Form10.h"
#include "billing/invoice/invoicesave.h"
#include "registers/pickers.h"

#include <QDate>
#include <QObject>
#include <QString>
#include <cstdint>

class QComboBox;
class QDateEdit;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace tq {

class FlexGrid;

// What tells the two documents apart while they are composed.
struct DocumentKind {
    PatientCaller patientCaller;
    ExamCaller examCaller;
    std::int16_t discountSelector;   // the discount box's branch: 1 invoice, 2 order
    bool titlesExamPicker;           // the picker is told "PRECIOS NORMALES" or the insurer
    bool doctorLockedByTotals;       // the doctor list is closed once totalled
    QString title;                   // title of the screen's messages
    QString noun;                    // "la factura", "la orden": said in failure messages
    QString totalsFirst;             // "+/-" before the totals
    QString anotherQuestion;         // "Otra ..." asks this,
    QString anotherTitle;            // under this title,
    QString screen;                  // and opens this screen afresh.
};

struct ComposerControls {
    QLineEdit* clinom;
    QLineEdit* clidir;
    QComboBox* Combo1;
    QLabel* Label10;
    QLabel* Label12;
    FlexGrid* Factura;
    QLineEdit* subtfact;
    QLineEdit* impfact;
    QLineEdit* Text1;
    QLineEdit* totfact;
    QDateEdit* DT;
    QPushButton* agregar;
    QPushButton* eliminar;
    QPushButton* Command1;
    QPushButton* generar;
    QPushButton* guardarfact;
    QPushButton* imprimir;
    QPushButton* limpiar;
    QPushButton* Otrafact;
};

// The controls of a screen's form, by their names.
template <class Form>
ComposerControls composerControls(Form* ui)
{
    return {ui->clinom,  ui->clidir,      ui->Combo1,  ui->Label10,  ui->Label12,
            ui->Factura, ui->subtfact,    ui->impfact, ui->Text1,    ui->totfact,
            ui->DT,      ui->agregar,     ui->eliminar, ui->Command1, ui->generar,
            ui->guardarfact, ui->imprimir, ui->limpiar, ui->Otrafact};
}

class DocumentComposer : public QObject, public ExtraTarget {
    Q_OBJECT
public:
    // The grid's columns.
    enum Col { Cantidad, Codigo, Descripcion, PrecioU, PrecioT };

    DocumentComposer(DocumentKind kind, const ComposerControls& controls, QWidget* screen);
    ~DocumentComposer() override;

    // Form load: the doctor list and the grid. False, having said so, when no
    // doctor exists: nothing can be composed then.
    bool load();
    void setUpGrid(bool firstLoad);

    // The patient as picked or imported; the price list follows the insurer.
    // `Label12` is the caller's to write.
    void setPatient(std::int32_t code, const QString& name, const QString& address,
                    const QDate& birth, std::int32_t insurer, const QString& insurerName);
    std::int32_t patient() const { return m_codPaciente; }
    std::int32_t insurer() const { return m_codSeguro; }
    const QDate& birth() const { return m_fechaNacimiento; }

    // The document as it stands (the number is the screen's). Refuses a
    // quantity out of bounds. Throws AppError.
    PricedDocument document() const;
    // Whether the total reads 0, which no cash document may have.
    bool zeroTotal() const;
    // After a save: amounts red, document locked, "Imprimir" and "Otra" on.
    void showSaved();
    bool saved() const { return m_saved; }
    void cancelar();
    int lastLine() const;
    // Enter on a line's code: the line priced, merged with one of the same code.
    void acceptLine(int row);
    // "Generar": the totals, with the third-age discount when it applies.
    void generar();

    // The discount box's view of the document.
    QString subtotalText() const override;
    void applyExtra(const QString& caption, const QString& extra, const QString& total) override;

signals:
    // The document was emptied (a new patient, "Cancelar").
    void cleared();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void choosePatient();
    void gridKey(int row, int col, QKeyEvent* event);
    void chooseExam(int row);
    void removeRow(int row);
    void eliminar();
    void agregar();
    void descuentoRecargo();
    void limpiar();
    void another();
    bool nothingToTotal() const;
    void clearAmounts();

    DocumentKind m_kind;
    ComposerControls m_c;
    QWidget* m_screen;
    std::int32_t m_codPaciente = 0;
    std::int32_t m_codSeguro = 0;   // 0: the patient pays normal prices
    QDate m_fechaNacimiento;
    QString m_empresa;               // the insurer's name, for the exam picker's title
    int m_clickedRow = 0;            // the row "-" removes; 0 after a removal
    bool m_saved = false;
};

}  // namespace tq

#pragma once
// What the reprint list (Form25) and the correction list (Form37) share: an
// invoice number typed in a box, the invoice's saved sheets listed anew on
// every change of it (template code, template name, and the sheet number in a
// column out of sight), and a row chosen by a click or Enter. What is done
// with the chosen sheet is each list's own.
#include "lab/sheets/gridsheet.h"

#include <QWidget>
#include <cstdint>
#include <optional>

class QAbstractButton;
class QLineEdit;

namespace tq {
class FlexGrid;
}

namespace tq::results {

// A sheet as the list shows it.
struct ListedSheet {
    std::int32_t factura = 0;
    std::int32_t numFormato = 0;
    int codPlantilla = 0;
    QString plantilla;   // the template's name
};

class InvoiceSheetList : public QWidget {
    Q_OBJECT
public:
    // The invoice the box names: the leading number of its text, read the
    // classic way. A number no invoice can carry (decimals, beyond 32 bits)
    // names none.
    static std::optional<std::int32_t> invoiceOf(const QString& typed);

protected:
    explicit InvoiceSheetList(QWidget* parent);
    // Called once the .ui is set up.
    void attachList(QLineEdit* factura, FlexGrid* grid, QAbstractButton* salir);

    // The sheet chosen on the list. Runs inside the action's error boundary.
    virtual void open(const ListedSheet& sheet) = 0;

    QLineEdit* facturaBox() const { return m_factura; }
    // The patient's name and the invoice's date, for the sheet's heading;
    // both empty when the invoice or its patient is gone. Throws DbError.
    static sheets::StoredHeading headingOf(std::int32_t factura);

private:
    void configurargrid();
    void requery();
    void choose(int row);

    QLineEdit* m_factura = nullptr;
    FlexGrid* m_grid = nullptr;
    std::int32_t m_listed = 0;   // the invoice the rows belong to
};

}  // namespace tq::results

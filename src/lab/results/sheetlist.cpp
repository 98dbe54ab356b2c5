#include "lab/results/sheetlist.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>
#include <cmath>

namespace tq::results {

InvoiceSheetList::InvoiceSheetList(QWidget* parent) : QWidget(parent, Qt::Window) {}

std::optional<std::int32_t> InvoiceSheetList::invoiceOf(const QString& typed)
{
    const double value = Val(typed);
    if (value != std::floor(value) || value > 2147483647.0 || value < -2147483648.0)
        return std::nullopt;
    return toInt32(value);
}

void InvoiceSheetList::attachList(QLineEdit* factura, FlexGrid* grid, QAbstractButton* salir)
{
    m_factura = factura;
    m_grid = grid;
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    connect(salir, &QAbstractButton::clicked, this, &QWidget::close);
    connect(factura, &QLineEdit::textChanged, this, [this] {
        guarded(QStringLiteral("buscar los formatos de la factura"), [this] { requery(); });
    });
    // A click or Enter on a row chooses it.
    connect(grid, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("abrir el formato de resultados"), [this, row] { choose(row); });
    });
    configurargrid();
}

void InvoiceSheetList::configurargrid()
{
    m_grid->clear();
    m_grid->setRows(1);
    // Column 3 carries the sheet number out of sight (one twip wide, it
    // showed as a sliver of its header: hidden, its texts stay readable).
    m_grid->setColumns({{"", 300}, {"FORMATO", 1000}, {"FORMATO DE EXAMEN", 2500}, {"HISTORIAL", 0}});
}

void InvoiceSheetList::requery()
{
    configurargrid();
    m_listed = 0;
    const std::optional<std::int32_t> factura = invoiceOf(m_factura->text());
    if (!factura)
        return;
    // Ordered as the sheets were always listed: by number, then template.
    Recordset rs;
    rs.open(QStringLiteral("SELECT DISTINCT resultados.NumFormato, resultados.Cod_Plantilla, "
                           "Plantilla.Plantilla FROM Plantilla INNER JOIN resultados "
                           "ON Plantilla.Cod_Plantilla = resultados.Cod_Plantilla "
                           "WHERE resultados.num_factura = ? ORDER BY 1, 2, 3"),
            {*factura});
    const int n = rs.recordCount();
    if (n == 0)
        return;
    QStringList codes, names, numbers;
    for (int r = 0; r < n; ++r) {
        numbers << rs.valueAt(r, 0).toString();
        codes << rs.valueAt(r, 1).toString();
        names << rs.valueAt(r, 2).toString();
    }
    m_grid->setRows(n + 1);
    m_grid->setColumnTexts(1, codes);
    m_grid->setColumnTexts(2, names);
    m_grid->setColumnTexts(3, numbers);
    m_listed = *factura;
}

void InvoiceSheetList::choose(int row)
{
    if (m_grid->rows() <= 1 || row < 1 || row >= m_grid->rows())
        return;
    ListedSheet sheet;
    sheet.factura = m_listed;
    sheet.codPlantilla = toInt32(m_grid->textMatrix(row, 1));
    sheet.plantilla = m_grid->textMatrix(row, 2);
    sheet.numFormato = toInt32(m_grid->textMatrix(row, 3));
    open(sheet);
}

sheets::StoredHeading InvoiceSheetList::headingOf(std::int32_t factura)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT Factura.fecha, Pacientes.nombre_paciente, "
                           "Pacientes.apellido_paciente FROM Factura, Pacientes "
                           "WHERE Factura.cod_paciente = Pacientes.cod_paciente "
                           "AND Factura.factura = ?"),
            {factura});
    sheets::StoredHeading heading;
    if (rs.recordCount() == 0)
        return heading;
    const QDate fecha = storedDate(rs.valueAt(0, 0));
    heading.fecha = fecha.isValid() ? dateLong(fecha) : QString();
    heading.paciente = rs.valueAt(0, 1).toString() + QLatin1Char(' ') + rs.valueAt(0, 2).toString();
    return heading;
}

}  // namespace tq::results

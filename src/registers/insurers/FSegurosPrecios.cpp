#include "registers/insurers/FSegurosPrecios.h"

#include "ui_FSegurosPrecios.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/mover.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "registers/insurers/pricelist.h"

#include <QKeyEvent>

TQ_REGISTER_SCREEN(FSegurosPrecios)

using namespace tq;

namespace {

enum Col { Codigo, Descripcion, Precio };
constexpr double kMaxPrice = 9999999999.99;   // NUMERIC(12,2)

void setUpGrid(FlexGrid* g)
{
    g->setCols(3);
    g->setRows(1);
    g->setTextMatrix(0, Codigo, QStringLiteral("COD."));
    g->setTextMatrix(0, Descripcion, QStringLiteral("DESCRIPCION"));
    g->setTextMatrix(0, Precio, QStringLiteral("PRECIO"));
    g->setColWidth(Codigo, 800);
    g->setColWidth(Descripcion, 3600);
    g->setColWidth(Precio, 1100);
}

// Rows of code, name and price of a query into a grid, from row 1.
int fillGrid(FlexGrid* g, const QString& sql, const QVariantList& binds)
{
    Recordset rs;
    rs.open(sql, binds);
    const int n = rs.recordCount();
    QStringList codes, names, prices;
    for (int r = 0; r < n; ++r) {
        codes << rs.valueAt(r, QStringLiteral("cod_descripcionexamen")).toString();
        names << rs.valueAt(r, QStringLiteral("examen")).toString();
        prices << money(rs.valueAt(r, QStringLiteral("precio")));
    }
    g->setRows(1);
    g->setRows(n + 1);
    if (n == 0)
        return 0;
    g->setColumnTexts(Codigo, codes, 1);
    g->setColumnTexts(Descripcion, names, 1);
    g->setColumnTexts(Precio, prices, 1);
    return n;
}

}  // namespace

FSegurosPrecios::FSegurosPrecios(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::FSegurosPrecios>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FSegurosPrecios"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeListOnly(ui->Combo1);
    setUpGrid(ui->Grid1);
    setUpGrid(ui->Grid2);

    m_mover = new TwoListMover({ui->Grid1, ui->Grid2, ui->Command1, ui->Command2, ui->Command7,
                                ui->txttotal},
                               this);
    // The total counts the exams given to the insurer since it was chosen.
    m_mover->setCounting(TwoListMover::Count::NewRows);
    m_mover->setBeforeAddAll([this] {
        if (ui->Combo1->currentIndex() >= 0)
            return true;
        prompts().message(QStringLiteral("debe seleccionar un seguro"), Icon::Exclamation);
        return false;
    });

    connect(ui->Combo1, &QComboBox::activated, this, [this] {
        guarded(QStringLiteral("cargar la lista de precios del seguro"), [this] { chooseInsurer(); });
    });
    connect(ui->Text1, &QLineEdit::textChanged, this, [this](const QString& text) {
        guarded(QStringLiteral("buscar el examen"), [this, text] { search(text); });
    });
    connect(ui->Grid2, &FlexGrid::cellKeyPressed, this,
            [this](int row, int col, QKeyEvent* e) { priceKey(row, col, e); });
    onClick(ui->Command3, QStringLiteral("guardar los precios del seguro"), [this] { save(); });
    onClick(ui->Command4, QStringLiteral("cancelar la asignación de precios"), [this] { reset(); });
    onClick(ui->Command5, QStringLiteral("cerrar la pantalla"), [this] { close(); });

    guarded(QStringLiteral("cargar la lista de examenes"), [this] {
        loadExams(QStringLiteral("SELECT * FROM Examenes ORDER BY examen"), {});
    });
    guarded(QStringLiteral("cargar la lista de seguros"), [this] { loadInsurers(); });
}

FSegurosPrecios::~FSegurosPrecios() = default;

int FSegurosPrecios::loadExams(const QString& sql, const QVariantList& binds)
{
    return fillGrid(ui->Grid1, sql, binds);
}

void FSegurosPrecios::loadInsurers()
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT * FROM seguros ORDER BY Empresa"));
    ui->Combo1->clear();
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const std::int32_t code = toInt32(rs.field(QStringLiteral("Cod_Seguro")));
        ui->Combo1->addItem(QString::number(code) + QStringLiteral("  ")
                                + rs.text(QStringLiteral("Empresa")),
                            code);
    }
    ui->Combo1->setCurrentIndex(-1);
}

int FSegurosPrecios::loadInsurerList(std::int32_t insurer)
{
    m_mover->clearRight();
    const int n = fillGrid(ui->Grid2, insurerPriceListSql() + QStringLiteral("ORDER BY Examenes.examen"),
                           {insurer});
    m_mover->takeRightAsFilled();
    return n;
}

void FSegurosPrecios::chooseInsurer()
{
    if (ui->Combo1->currentIndex() < 0)
        return;
    loadInsurerList(toInt32(ui->Combo1->currentData()));
}

void FSegurosPrecios::search(const QString& text)
{
    const QString pattern = text + QLatin1Char('%');
    if (ui->Option1->isChecked())
        loadExams(QStringLiteral("SELECT * FROM Examenes WHERE CAST(cod_descripcionexamen AS "
                                 "VARCHAR(20)) LIKE ? ORDER BY cod_descripcionexamen"),
                  {pattern});
    else
        loadExams(QStringLiteral("SELECT * FROM Examenes WHERE examen LIKE ? ORDER BY examen"),
                  {pattern});
}

// The price cell of the insurer's list is typed in place: digits and the
// point append, Backspace drops the last character, other characters are
// ignored. Keys without a character still move through the grid.
void FSegurosPrecios::priceKey(int row, int col, QKeyEvent* e)
{
    FlexGrid* g = ui->Grid2;
    if (col != Precio || row < 1 || row >= g->rows())
        return;
    QString cell = g->textMatrix(row, col);
    if (e->key() == Qt::Key_Backspace) {
        cell.chop(1);
    } else {
        const QString typed = e->text();
        if (typed.isEmpty() || e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter
            || e->key() == Qt::Key_Tab)
            return;
        for (const QChar c : typed)
            if (c.isDigit() && c.unicode() < 128)
                cell += c;
            else if (c == QLatin1Char('.'))
                cell += c;
    }
    e->accept();
    g->setTextMatrix(row, col, cell);
}

void FSegurosPrecios::save()
{
    if (ui->Combo1->currentIndex() < 0) {
        prompts().message(QStringLiteral("Debe ingresar un Seguro"), Icon::Exclamation);
        ui->Combo1->setFocus();
        return;
    }
    if (ui->txttotal->text().isEmpty() || Val(ui->txttotal->text()) == 0) {
        prompts().message(QStringLiteral("Debe asignar al menos un examen al seguro"),
                          Icon::Exclamation);
        return;
    }
    const FlexGrid* g = ui->Grid2;
    for (int row = 1; row < g->rows(); ++row) {
        if (Val(g->textMatrix(row, Precio)) > kMaxPrice) {
            prompts().message(QStringLiteral("El precio del examen %1 es demasiado grande.")
                                  .arg(g->textMatrix(row, Descripcion)),
                              Icon::Exclamation);
            return;
        }
    }
    const std::int32_t insurer = toInt32(ui->Combo1->currentData());
    {
        Transaction t;
        for (int row = 1; row < g->rows(); ++row) {
            const std::int32_t exam = toInt32(g->textMatrix(row, Codigo));
            const QString cell = g->textMatrix(row, Precio);
            const QString price = money(cell.isEmpty() ? 0.0 : Val(cell));
            const QString update = QStringLiteral(
                "UPDATE RelSeguroPrecios SET precio = ? "
                "WHERE Cod_descripcionexamen = ? AND cod_seguro = ?");
            if (!m_mover->isNew(row)) {
                amb1().execute(update, {price, exam, insurer});
                continue;
            }
            // A row taken off with "<" and given again is still in the list
            // (a save never deletes): its price is overwritten, not doubled.
            if (amb1().execute(update, {price, exam, insurer}) == 0)
                amb1().insert(QStringLiteral("RelSeguroPrecios"),
                              {QStringLiteral("cod_seguro"), QStringLiteral("Cod_descripcionexamen"),
                               QStringLiteral("precio")},
                              {insurer, exam, price});
        }
        t.commit();
    }
    prompts().message(QStringLiteral("Los examenes se asignaron exitosamente"));
    reset();
}

void FSegurosPrecios::reset()
{
    m_mover->clearRight();
    ui->Combo1->setCurrentIndex(-1);
}

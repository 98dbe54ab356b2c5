#include "registers/exams/FBuscarArticulo.h"

#include "ui_FBuscarArticulo.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "registers/insurers/pricelist.h"

#include <QKeyEvent>

TQ_REGISTER_SCREEN(FBuscarArticulo)

using namespace tq;

namespace {

void setHeaders(FlexGrid* g, const char* code)
{
    g->setTextMatrix(0, 0, QString::fromUtf8(code));
    g->setTextMatrix(0, 1, QStringLiteral("DESCRIPCION"));
    g->setTextMatrix(0, 2, QStringLiteral("PRECIO"));
}

}  // namespace

FBuscarArticulo::FBuscarArticulo(ExamCaller caller, std::int32_t insurer, QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::FBuscarArticulo>()), m_caller(caller),
      m_insurer(insurer)
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FBuscarArticulo"));
    ui->Label2->hide();   // until a caller says whose prices these are
    setAttribute(Qt::WA_DeleteOnClose);

    FlexGrid* g = ui->Grid1;
    g->setCols(3);
    g->setRows(1);
    setHeaders(g, "CÓDIGO");
    g->setColWidth(0, 1200);
    g->setColWidth(1, 5000);
    g->setColWidth(2, 1200);

    // A click or Enter on a row chooses it.
    connect(g, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("elegir el examen"), [this, row] { choose(row); });
    });
    const auto searchTyped = [this] {
        guarded(QStringLiteral("buscar el examen"), [this] { search(ui->Text1->text()); });
    };
    connect(ui->Text1, &QLineEdit::textChanged, this, searchTyped);
    // Switching between code and description searches again what is typed.
    for (QRadioButton* option : {ui->Option1, ui->Option2})
        connect(option, &QRadioButton::toggled, this, [this, searchTyped](bool on) {
            if (on && !ui->Text1->text().isEmpty())
                searchTyped();
        });

    guarded(QStringLiteral("cargar la lista de examenes"), [this] {
        if (loadList() == 0)
            prompts().message(QStringLiteral("No existen examenes creados"));
    });
}

FBuscarArticulo::~FBuscarArticulo() = default;

void FBuscarArticulo::setTitle(const QString& title)
{
    ui->Label2->setText(title);
    ui->Label2->setVisible(!title.isEmpty());
}

int FBuscarArticulo::fill(const QString& sql, const QVariantList& binds)
{
    Recordset rs;
    rs.open(sql, binds);
    const int n = rs.recordCount();
    QStringList codes, names, prices;
    codes.reserve(n);
    names.reserve(n);
    prices.reserve(n);
    for (int r = 0; r < n; ++r) {
        codes << rs.valueAt(r, QStringLiteral("cod_descripcionexamen")).toString();
        names << rs.valueAt(r, QStringLiteral("examen")).toString();
        prices << money(rs.valueAt(r, QStringLiteral("precio")));
    }
    FlexGrid* g = ui->Grid1;
    g->setRows(1);
    g->setRows(n + 1);
    if (n == 0)
        return 0;
    g->setColumnTexts(0, codes, 1);
    g->setColumnTexts(1, names, 1);
    g->setColumnTexts(2, prices, 1);
    return n;
}

int FBuscarArticulo::loadList()
{
    if (m_insurer != 0)
        return fill(insurerPriceListSql() + QStringLiteral("ORDER BY Examenes.examen"),
                    {m_insurer});
    return fill(QStringLiteral("SELECT * FROM Examenes ORDER BY examen"), {});
}

int FBuscarArticulo::search(const QString& text)
{
    const bool byCode = ui->Option1->isChecked();
    const QString pattern = text + QLatin1Char('%');
    int n = 0;
    if (m_insurer != 0) {
        n = fill(insurerPriceListSql()
                     + (byCode ? QStringLiteral("AND CAST(Examenes.cod_descripcionexamen AS "
                                                "VARCHAR(20)) LIKE ? ORDER BY Examenes.cod_descripcionexamen")
                               : QStringLiteral("AND Examenes.examen LIKE ? ORDER BY Examenes.examen")),
                 {m_insurer, pattern});
    } else {
        n = fill(byCode ? QStringLiteral("SELECT * FROM Examenes WHERE CAST(cod_descripcionexamen AS "
                                         "VARCHAR(20)) LIKE ? ORDER BY cod_descripcionexamen LIMIT 60")
                        : QStringLiteral("SELECT * FROM Examenes WHERE examen LIKE ? "
                                         "ORDER BY examen LIMIT 60"),
                 {pattern});
    }
    setHeaders(ui->Grid1, "CODIGO");
    return n;
}

void FBuscarArticulo::choose(int row)
{
    const FlexGrid* g = ui->Grid1;
    if (row < 1 || row >= g->rows() || g->textMatrix(row, 0).isEmpty())
        return;
    ChosenExam exam;
    exam.code = toInt32(g->textMatrix(row, 0));
    exam.name = g->textMatrix(row, 1);
    exam.price = Val(g->textMatrix(row, 2));
    if (m_onChosen)
        m_onChosen(exam);
    close();
}

namespace tq {

std::optional<ChosenExam> chooseExam(ExamCaller caller, std::int32_t insurer, const QString& title)
{
    std::optional<ChosenExam> choice;
    const std::int16_t before = state().articlePicker;
    state().articlePicker = static_cast<std::int16_t>(caller);
    auto* picker = new FBuscarArticulo(caller, insurer);
    picker->setTitle(title);
    picker->setOnChosen([&choice](const ChosenExam& e) { choice = e; });
    try {
        prompts().showModal(picker);
    } catch (...) {
        state().articlePicker = before;
        throw;
    }
    state().articlePicker = before;
    return choice;
}

}  // namespace tq

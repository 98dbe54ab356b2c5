#include "registers/exams/Form6.h"

#include "ui_Form6.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QKeyEvent>

TQ_REGISTER_SCREEN(Form6)

using namespace tq;

namespace {

// Columns of Grid1.
enum Col { Tipo, Codigo, Examen, Precio, Entrega, PrecioOtros, Llena, Cols };

constexpr int kNameWidth = 100;      // Examenes.examen
constexpr int kDeliveryWidth = 50;   // Examenes.tiempo_entrega
constexpr double kMaxPrice = 9999999999.99;   // NUMERIC(12,2)

bool storedYes(const QVariant& v)
{
    const QString t = v.toString().trimmed().toLower();
    return t == QLatin1String("true") || (!t.isEmpty() && t != QLatin1String("false") && Val(t) != 0);
}

}  // namespace

Form6::Form6(QWidget* parent) : RegisterScreen(parent), ui(std::make_unique<Ui::Form6>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form6"));
    state().screenNumber = 6;
    makeListOnly(ui->Combo1);
    makeListOnly(ui->Combo2);
    makeAmountBox(ui->Text3);
    makeAmountBox(ui->Text5);

    FlexGrid* g = ui->Grid1;
    g->setCols(Cols);
    g->setRows(1);
    const char* headers[] = {"TIPO EXAMEN", "COD.EXAMEN", "EXAMEN", "PRECIO", "ENTREGA",
                             "PRECIO OTROS", "LLENA"};
    const int widths[] = {1000, 1000, 5000, 1000, 1000, 1800, 0};
    for (int c = 0; c < Cols; ++c) {
        g->setTextMatrix(0, c, QString::fromUtf8(headers[c]));
        g->setColWidth(c, widths[c]);
    }

    setUpRegister({ui->agregar, ui->modificar, ui->eliminar, ui->guardar, ui->cancelar, ui->salir},
                  {ui->Combo1, ui->Text2, ui->Text3, ui->Text5, ui->Text4, ui->Combo2}, g,
                  QStringLiteral("el examen"), {ui->Text1});
    setListNoun(QStringLiteral("examenes"));

    // A click or Enter on a row chooses it.
    connect(g, &FlexGrid::rowChosen, this, [this](int row) {
        if (!isEditing())
            guarded(QStringLiteral("mostrar los datos del examen"), [this, row] { chooseRow(row - 1); });
    });
    connect(ui->Text1, &QLineEdit::textChanged, this, [this](const QString& text) {
        guarded(QStringLiteral("buscar el examen"), [this, text] { searchExams(text); });
    });
    onClick(ui->Command1, QStringLiteral("abrir los tipos de examen"), [this] { openTypes(); });

    guarded(QStringLiteral("cargar los tipos de examen"), [this] { loadTypes(); });
    start();
    guarded(QStringLiteral("mostrar el primer examen"), [this] {
        if (ui->Grid1->rows() <= 1) {
            prompts().message(QStringLiteral("no existe ningun examen creado hasta el momento"),
                              Icon::None, messageTitle());
            return;
        }
        ui->Grid1->setRow(1);
        chooseRow(0);
        enterRest();
    });
}

Form6::~Form6() = default;

void Form6::loadTypes()
{
    const QVariant chosen = ui->Combo1->currentData();
    Recordset rs;
    rs.open(QStringLiteral("SELECT * FROM TipoExamen ORDER BY cod_tipo_examen"));
    ui->Combo1->clear();
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const std::int32_t code = toInt32(rs.field(QStringLiteral("cod_tipo_examen")));
        ui->Combo1->addItem(QString::number(code) + QLatin1Char('_')
                                + rs.text(QStringLiteral("tipo_examen")),
                            code);
    }
    ui->Combo1->setCurrentIndex(chosen.isValid() ? ui->Combo1->findData(chosen) : -1);
}

void Form6::openTypes()
{
    openModal(QStringLiteral("Form3"));
    // A type added there can be chosen at once.
    loadTypes();
}

int Form6::fillGrid(const QString& sql, const QVariantList& binds)
{
    Recordset rs;
    rs.open(sql, binds);
    const int n = rs.recordCount();
    QVector<QStringList> cols(Cols);
    for (auto& c : cols)
        c.reserve(n);
    for (int r = 0; r < n; ++r) {
        cols[Tipo] << rs.valueAt(r, QStringLiteral("cod_tipo_examen")).toString();
        cols[Codigo] << rs.valueAt(r, QStringLiteral("cod_descripcionexamen")).toString();
        cols[Examen] << rs.valueAt(r, QStringLiteral("examen")).toString();
        cols[Precio] << money(rs.valueAt(r, QStringLiteral("precio")));
        cols[Entrega] << rs.valueAt(r, QStringLiteral("tiempo_entrega")).toString();
        cols[PrecioOtros] << money(rs.valueAt(r, QStringLiteral("precioo")));
        cols[Llena] << (storedYes(rs.valueAt(r, QStringLiteral("llenaresultado")))
                            ? QStringLiteral("Si")
                            : QStringLiteral("No"));
    }
    FlexGrid* g = ui->Grid1;
    g->setRows(1);
    g->setRows(n + 1);
    if (n == 0)
        return 0;
    for (int c = 0; c < Cols; ++c)
        g->setColumnTexts(c, cols[c], 1);
    return n;
}

void Form6::loadGrid()
{
    fillGrid(QStringLiteral("SELECT * FROM Examenes ORDER BY examen LIMIT 100"), {});
}

int Form6::searchExams(const QString& text)
{
    return fillGrid(QStringLiteral("SELECT * FROM Examenes WHERE examen LIKE ? "
                                   "ORDER BY examen LIMIT 100"),
                    {QLatin1Char('%') + text + QLatin1Char('%')});
}

QVariant Form6::codeAt(int row) const
{
    const FlexGrid* g = ui->Grid1;
    if (row < 0 || row + 1 >= g->rows())
        return {};
    return g->textMatrix(row + 1, Codigo);
}

int Form6::currentRow() const
{
    const FlexGrid* g = ui->Grid1;
    return g->row() >= 1 && g->row() < g->rows() ? g->row() - 1 : -1;
}

int Form6::selectRowWithCode(const QVariant& code)
{
    if (!code.isValid() || code.isNull())
        return -1;
    FlexGrid* g = ui->Grid1;
    const QString key = QString::number(toInt32(code));
    for (int r = 1; r < g->rows(); ++r) {
        if (g->textMatrix(r, Codigo) == key) {
            g->setRow(r);
            return r - 1;
        }
    }
    return -1;
}

void Form6::showRow(int row)
{
    const FlexGrid* g = ui->Grid1;
    const int r = row + 1;
    if (r < 1 || r >= g->rows())
        return;
    ui->Combo1->setCurrentIndex(ui->Combo1->findData(toInt32(g->textMatrix(r, Tipo))));
    ui->Text2->setText(g->textMatrix(r, Examen));
    ui->Text3->setText(g->textMatrix(r, Precio));
    ui->Text4->setText(g->textMatrix(r, Entrega));
    ui->Text5->setText(g->textMatrix(r, PrecioOtros));
    ui->Combo2->setCurrentIndex(ui->Combo2->findText(g->textMatrix(r, Llena)));
}

std::optional<Refusal> Form6::validate(int)
{
    if (ui->Combo1->currentIndex() < 0)
        return Refusal{QStringLiteral("Debe especificar el tipo de Examen"), ui->Combo1, Icon::None};
    if (ui->Text2->text().trimmed().isEmpty())
        return Refusal{QStringLiteral("Debe especificar un Nombre de Examen"), ui->Text2, Icon::None};
    if (ui->Text2->text().size() > kNameWidth)
        return Refusal{QStringLiteral("El nombre del examen no puede tener más de %1 caracteres.")
                           .arg(kNameWidth),
                       ui->Text2, Icon::Exclamation};
    if (ui->Text4->text().size() > kDeliveryWidth)
        return Refusal{QStringLiteral("El tiempo de entrega no puede tener más de %1 caracteres.")
                           .arg(kDeliveryWidth),
                       ui->Text4, Icon::Exclamation};
    if (Val(ui->Text3->text()) > kMaxPrice)
        return Refusal{QStringLiteral("El precio normal es demasiado grande."), ui->Text3,
                       Icon::Exclamation};
    if (Val(ui->Text5->text()) > kMaxPrice)
        return Refusal{QStringLiteral("El precio otros es demasiado grande."), ui->Text5,
                       Icon::Exclamation};
    return std::nullopt;
}

// An empty price box stores 0; a typed one its leading number.
static QString typedPrice(const QString& text) { return money(text.isEmpty() ? 0.0 : Val(text)); }

QVariant Form6::saveAdd()
{
    // An added exam keeps the column's default for llenaresultado, whatever
    // Combo2 shows; only a modify sets it.
    const QVariant key = amb1().insert(
        QStringLiteral("Examenes"),
        {QStringLiteral("cod_tipo_examen"), QStringLiteral("examen"), QStringLiteral("precio"),
         QStringLiteral("precioo"), QStringLiteral("tiempo_entrega")},
        {toInt32(ui->Combo1->currentData()), ui->Text2->text(), typedPrice(ui->Text3->text()),
         typedPrice(ui->Text5->text()), ui->Text4->text()});
    if (!key.isValid() || key.isNull())
        return {};
    return toInt32(key);
}

void Form6::saveModify()
{
    amb1().execute(QStringLiteral("UPDATE Examenes SET cod_tipo_examen = ?, examen = ?, precio = ?, "
                                  "precioo = ?, tiempo_entrega = ?, llenaresultado = ? "
                                  "WHERE cod_descripcionexamen = ?"),
                   {toInt32(ui->Combo1->currentData()), ui->Text2->text(),
                    typedPrice(ui->Text3->text()), typedPrice(ui->Text5->text()),
                    ui->Text4->text(), ui->Combo2->currentText() == QLatin1String("Si"),
                    selectedCode()});
}

bool Form6::canDelete()
{
    // Only invoices hold an exam back; order lines, price lists and supplies
    // keep the code of an exam that is gone.
    const QVariant billed = amb1().scalar(
        QStringLiteral("SELECT cod_descripcionexamen FROM FacturaDetalle "
                       "WHERE cod_descripcionexamen = ? LIMIT 1"),
        {selectedCode()});
    if (billed.isValid()) {
        prompts().message(
            QStringLiteral("No se puede eliminar el Examen, tiene facturas creadas a su nombre"),
            Icon::None, messageTitle());
        return false;
    }
    return true;
}

void Form6::deleteSelected()
{
    amb1().execute(QStringLiteral("DELETE FROM Examenes WHERE cod_descripcionexamen = ?"),
                   {selectedCode()});
}

QString Form6::deleteQuestion() const { return QStringLiteral("Esta seguro de eliminar el examen"); }
QString Form6::deleteQuestionTitle() const { return QStringLiteral("Confirme"); }
QString Form6::addedMessage() const { return QStringLiteral("Proceso exitoso"); }
QString Form6::modifiedMessage() const { return QStringLiteral("Proceso exitoso"); }
